// /orvek-aaa:sysAaa/aaaGroup/serverGroup: one request for each change of a
// group's type leaf.
#include "aaa_nc/server_group.hpp"

#include <cstring>

#include "handlers/group_key.hpp"
#include "handlers/handlers.hpp"
#include "walk/text.hpp"

struct GroupType {
    const char *word; // serverGroupType
    std::uint32_t eMsgType;
};

static constexpr GroupType kGroupTypes[] = {
    {"tacacs", AAA_NC_MSG_TACACS_GROUP},
    {"radius", AAA_NC_MSG_RADIUS_GROUP},
};

// No blanks, and not the name of a protocol.
static bool groupNameIsValid(const char *name)
{
    return std::strchr(name, ' ') == nullptr && std::strcmp(name, "radius") != 0 &&
           std::strcmp(name, "tacacs") != 0;
}

static int serverGroupChange(AaaNcWalk &walk, const AaaNcChange &change)
{
    AaaNcGroupKey key;
    const int rc = aaaNcGroupKeyGet(walk, change, key);
    if (rc != 0) {
        return rc;
    }
    AaaNcServerGroupInfo info{};
    aaaNcTextCopy(info.groupName, key.name, sizeof(info.groupName));
    // Refused without a line, for every leaf of the entry.
    if (!groupNameIsValid(info.groupName)) {
        return AAA_NC_REFUSED;
    }
    // A type of no known protocol leaves the block as it stands, and it is sent
    // all the same.
    for (const GroupType &type : kGroupTypes) {
        if (std::strcmp(key.type, type.word) == 0) {
            aaaNcWalkParamSet(walk, type.eMsgType, sizeof(info), &info);
        }
    }
    AAA_NC_DBG(walk.handler.function.oneLeafChangeParse,
               "Server group info: groupType %s, groupName %s.", key.type, info.groupName);
    return std::strcmp(change.leaf, "serverGroupType") == 0 ? aaaNcWalkSend(walk) : 0;
}

static constexpr AaaNcHandler kServerGroup =
    aaaNcGroupHandler("aaaNcServerGroupConfChanges", "aaaNcServerGroupLeafChangesParse",
                      "aaaNcServerGroupOneLeafChangeParse", serverGroupChange);

int aaaNcServerGroupConfChanges(sr_session_ctx_t *session, const char *xpath,
                                sr_notif_event_t event, void * /*private_ctx*/)
{
    AaaNcWalk walk{kServerGroup};
    return aaaNcChangesWalk(walk, session, xpath, event);
}
