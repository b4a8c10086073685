#include "handlers/group_key.hpp"

#include "walk/text.hpp"

static const char kList[] = "serverGroup";
static const char kType[] = "serverGroupType";
static const char kName[] = "serverGroupName";

int aaaNcGroupKeyGet(const AaaNcWalk &walk, const AaaNcChange &change, AaaNcGroupKey &key)
{
    const char *type = nullptr;
    const int rc = aaaNcChangeKeyGet(walk, change, kList, kType, kType, &type);
    if (rc != 0) {
        return rc;
    }
    aaaNcTextCopy(key.type, type, sizeof(key.type));
    return aaaNcChangeKeyGet(walk, change, kList, kName, kName, &key.name);
}
