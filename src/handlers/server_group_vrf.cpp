// /orvek-aaa:sysAaa/aaaGroupVrf/serverGroup: one request for each change of a
// group's VRF.
#include "aaa_nc/server_group.hpp"

#include <cstring>

#include "gnl.h"
#include "handlers/group_key.hpp"
#include "handlers/handlers.hpp"
#include "walk/text.hpp"

// The VRF of a group that is bound to none.
static const char kNoVrf[] = "global";

// A protocol's record. Both names take 33 bytes in either.
struct GroupVrfType {
    const char *word; // serverGroupType
    std::uint32_t eMsgType;
    std::uint32_t length;
    std::size_t groupName; // offsets in the record
    std::size_t vrfName;
};

enum : std::size_t { kNameSize = 33 };

static constexpr GroupVrfType kGroupVrfTypes[] = {
    {"tacacs", AAA_NC_MSG_TACACS_GROUP_VRF, sizeof(AaaNcTacacsGroupVrfInfo),
     offsetof(AaaNcTacacsGroupVrfInfo, groupName), offsetof(AaaNcTacacsGroupVrfInfo, vrfName)},
    {"radius", AAA_NC_MSG_RADIUS_GROUP_VRF, sizeof(AaaNcRadiusGroupVrfInfo),
     offsetof(AaaNcRadiusGroupVrfInfo, groupName), offsetof(AaaNcRadiusGroupVrfInfo, vrfName)},
};

static const GroupVrfType *groupVrfTypeFind(const char *word)
{
    for (const GroupVrfType &type : kGroupVrfTypes) {
        if (std::strcmp(word, type.word) == 0) {
            return &type;
        }
    }
    return nullptr;
}

static int serverGroupVrfChange(AaaNcWalk &walk, const AaaNcChange &change)
{
    AaaNcGroupKey key;
    const int rc = aaaNcGroupKeyGet(walk, change, key);
    if (rc != 0) {
        return rc;
    }
    const GroupVrfType *type = groupVrfTypeFind(key.type);
    if (type == nullptr) {
        return 0;
    }
    char record[sizeof(AaaNcRadiusGroupVrfInfo)] = {}; // the longer of the two
    char *groupName = record + type->groupName;
    char *vrfName = record + type->vrfName;
    gnl_strlcpy(groupName, key.name, kNameSize);

    const bool isVrf = std::strcmp(change.leaf, "vrfName") == 0;
    if (isVrf) {
        const char *vrf = change.oper == SR_OP_DELETED ? kNoVrf : aaaNcValueText(*change.value);
        gnl_strlcpy(vrfName, vrf, kNameSize);
    }
    aaaNcWalkParamSet(walk, type->eMsgType, type->length, record);
    AAA_NC_DBG(walk.handler.function.oneLeafChangeParse,
               "Server group info: groupType %s, groupName %s,vrf %s.", key.type, groupName,
               vrfName);
    return isVrf ? aaaNcWalkSend(walk) : 0;
}

static constexpr AaaNcHandler kServerGroupVrf =
    aaaNcGroupHandler("aaaNcServerGroupVrfConfChanges", "aaaNcServerGroupVrfLeafChangesParse",
                      "aaaNcServerGroupVrfOneLeafChangeParse", serverGroupVrfChange);

int aaaNcServerGroupVrfConfChanges(sr_session_ctx_t *session, const char *xpath,
                                   sr_notif_event_t event, void * /*private_ctx*/)
{
    AaaNcWalk walk{kServerGroupVrf};
    return aaaNcChangesWalk(walk, session, xpath, event);
}
