// /orvek-aaa:sysAaa/aaaDomainAuthenInfo/authenInfo and
// /orvek-aaa:sysAaa/aaaDomainAccountInfo/accountInfo: a domain's 802.1X method
// list, for authentication and for accounting. Leaves are gathered; the record goes
// out once it is complete and a node that is none of the table's, such as the next
// entry's own, has come behind the domain name, or else at the end.
#include "aaa_nc/domain_method.hpp"

#include <cstring>

#include "handlers/handlers.hpp"
#include "walk/checks.hpp"
#include "walk/gather.hpp"
#include "walk/text.hpp"

// Leaves seen: what a record must have, and each leaf of the group pairs.
enum : std::uint32_t {
    kSeenDomain = 0x01,
    kSeenProtocol = 0x02,
    kSeenStage = 0x04,
    kSeenType = 0x08, // of any group
    kSeenName = 0x10, // of any group
    kTypeShift = 8,   // groupType, groupType1, groupType2, groupType3
    kNameShift = 12,  // groupName, groupName1, groupName2, groupName3
    kPairMask = 0x0F
};

struct Word {
    const char *text;
    std::uint32_t code;
};

// What tells authentication from accounting, beside names and texts.
struct MethodHandler : AaaNcHandler {
    // Before each send: domain name, protocol; and the flag, where it is printed
    // of a record that an unknown node sends.
    AaaNcLogText<const char *, std::uint32_t> set;
    AaaNcLogText<const char *, std::uint32_t, const char *> setByNode;
    AaaNcTwin twin;
    std::uint32_t complete;
    bool accounts; // a record with groups needs a stage
    std::uint32_t methodKind;
    Word protocols[2];
    Word groupTypes[2];
};

struct MethodWalk : AaaNcGather {
    const MethodHandler &list;
    AaaNcDomainMethodInfo info{};
    std::uint16_t index = 0;  // of the group being filled
    bool cmdoverflag = false; // another node has come after a domain name

    explicit MethodWalk(const MethodHandler &theList) : AaaNcGather(theList, &info), list(theList)
    {
    }
};

// Sets `field` to the code of the value's word, and leaves it where it is none of `words`.
template <std::size_t N>
static void wordStore(std::uint32_t &field, const Word (&words)[N], const sr_val_t &value)
{
    for (const Word &word : words) {
        if (std::strcmp(aaaNcValueText(value), word.text) == 0) {
            field = word.code;
        }
    }
}

static int protocolStore(AaaNcGather &gather, const AaaNcLeaf & /*leaf*/, const sr_val_t &value)
{
    auto &walk = static_cast<MethodWalk &>(gather);
    walk.info.methodKind = walk.list.methodKind;
    wordStore(walk.info.type, walk.list.protocols, value);
    return 0;
}

// The group being filled. Leaves do not choose it by their number: groups fill
// in the order in which pairs complete. Beyond the last there is an empty one
// that nothing is kept in.
static AaaNcGroup &currentGroup(MethodWalk &walk, AaaNcGroup &beyond)
{
    return walk.index < AAA_NC_GROUPS ? walk.info.groups[walk.index] : beyond;
}

static int groupTypeStore(AaaNcGather &gather, const AaaNcLeaf & /*leaf*/, const sr_val_t &value)
{
    auto &walk = static_cast<MethodWalk &>(gather);
    AaaNcGroup beyond{};
    AaaNcGroup &group = currentGroup(walk, beyond);
    wordStore(group.groupType, walk.list.groupTypes, value);
    if (group.groupName[0] != '\0') {
        ++walk.index;
    }
    return 0;
}

static int groupNameStore(AaaNcGather &gather, const AaaNcLeaf & /*leaf*/, const sr_val_t &value)
{
    auto &walk = static_cast<MethodWalk &>(gather);
    AaaNcGroup beyond{};
    AaaNcGroup &group = currentGroup(walk, beyond);
    const char *name = value.data.string_val; // a missing one is an error here
    if (aaaNcGroupNameCheck(name, walk.info.groups, walk.index, group.groupType) != 0) {
        // It prints the type, not the index.
        AAA_NC_ERR(walk.handler.function.infoFill, "Input group exist same name for group[%d]",
                   group.groupType);
        return AAA_NC_FAILED;
    }
    std::strncpy(group.groupName, name, 32);
    if (group.groupType != 0) {
        ++walk.index;
    }
    return 0;
}

// The stage "none" stands in for a group: it counts as a type and a name.
static int stageStore(AaaNcGather &gather, const AaaNcLeaf & /*leaf*/, const sr_val_t &value)
{
    static constexpr Word kStages[] = {
        {"none", 0}, {"start-stop", 1}, {"stop-only", 2}, {"wait-start", 3}};

    auto &walk = static_cast<MethodWalk &>(gather);
    wordStore(walk.info.accountStage, kStages, value);
    if (std::strcmp(aaaNcValueText(value), "none") == 0) {
        AaaNcGroup beyond{};
        currentGroup(walk, beyond).groupType = 1;
        walk.seen |= kSeenType | kSeenName;
    }
    return 0;
}

static int nothingStore(AaaNcGather & /*gather*/, const AaaNcLeaf & /*leaf*/,
                        const sr_val_t & /*value*/)
{
    return 0;
}

// The two leaves of group pair `pair`.
static constexpr AaaNcLeaf groupTypeLeaf(AaaNcNames names, std::uint32_t pair)
{
    return {names, kSeenType | 1U << (kTypeShift + pair), {groupTypeStore}};
}

static constexpr AaaNcLeaf groupNameLeaf(AaaNcNames names, std::uint32_t pair)
{
    return {names, kSeenName | 1U << (kNameShift + pair), {groupNameStore}};
}

static constexpr AaaNcLeaf kLeaves[] = {
    {{"authDomainName", "accountDomainName"},
     kSeenDomain,
     AAA_NC_AS_TEXT,
     AAA_NC_IN(AaaNcDomainMethodInfo, domainName)},
    {{"authenProtocol", "accountProtocol"}, kSeenProtocol, {protocolStore}},
    {{{}, "accountStage"}, kSeenStage, {stageStore}},
    groupTypeLeaf("groupType", 0),
    groupTypeLeaf("groupType1", 1),
    groupTypeLeaf("groupType2", 2),
    groupTypeLeaf("groupType3", 3),
    groupNameLeaf("groupName", 0),
    groupNameLeaf("groupName1", 1),
    groupNameLeaf("groupName2", 2),
    groupNameLeaf("groupName3", 3),
    // The containers that the groups stand in tell nothing.
    {{"authenServerGroup", "accountServerGroup"}, 0, {nothingStore}},
    {"GroupNum1", 0, {nothingStore}},
    {"GroupNum2", 0, {nothingStore}},
    {"GroupNum3", 0, {nothingStore}},
};

// Whether a group has its type or its name only, or an accounting record has
// groups and no stage.
static bool groupsAreUnpaired(const MethodWalk &walk)
{
    const std::uint32_t types = walk.seen >> kTypeShift & kPairMask;
    const std::uint32_t names = walk.seen >> kNameShift & kPairMask;
    return types != names || (walk.list.accounts && types != 0 && walk.info.accountStage == 0);
}

static int methodSend(MethodWalk &walk)
{
    const char *function = walk.handler.function.oneLeafChangeParse;
    const MethodHandler &list = walk.list;
    AaaNcDomainMethodInfo &info = walk.info;

    if (groupsAreUnpaired(walk)) {
        walk.keepsIter = true; // on purpose
        return AAA_NC_REFUSED;
    }
    if (walk.cmdoverflag && list.setByNode.format != nullptr) {
        AAA_NC_DBG_OF(function, list.setByNode, info.domainName, info.type, "true");
    } else {
        AAA_NC_DBG_OF(function, list.set, info.domainName, info.type);
    }
    aaaNcWalkParamSet(walk, AAA_NC_MSG_DOMAIN_METHOD, sizeof(info), &info);
    return aaaNcWalkSend(walk);
}

static int methodChange(AaaNcWalk &base, const AaaNcChange &change)
{
    auto &walk = static_cast<MethodWalk &>(base);
    const AaaNcLeaf *leaf = aaaNcLeafFind(kLeaves, walk.list.twin, change.leaf);
    if (leaf != nullptr) {
        const int rc = aaaNcLeafStore(walk, *leaf, change);
        if (rc != 0) {
            return rc;
        }
    } else if ((walk.seen & kSeenDomain) != 0) {
        walk.cmdoverflag = true;
    }
    if (!walk.cmdoverflag || (walk.seen & walk.list.complete) != walk.list.complete) {
        return 0;
    }
    const int rc = methodSend(walk);
    if (rc != 0) {
        walk.keepsIter = true; // on purpose
        return rc;
    }
    walk.info = {};
    walk.seen = 0;
    walk.index = 0;
    walk.cmdoverflag = false;
    return 0;
}

static int methodEnd(AaaNcWalk &base)
{
    auto &walk = static_cast<MethodWalk &>(base);
    if ((walk.seen & walk.list.complete) != walk.list.complete) {
        return 0;
    }
    return methodSend(walk);
}

static constexpr MethodHandler kAuthen = {
    {{"aaaNcDomainAuthenConfChanges", "aaaNcDomainAuthenLeafChangesParse",
      "aaaNcDomainAuthenOneLeafChangeParse", "aaaNcDomainAuthenInfoFill"},
     {AAA_NC_LOG_TEXT("Xpath for aaa domain authen dot1x change: %s, notify event %d."),
      AAA_NC_LOG_TEXT("Domain authen xpath %s, type %d, change oper %d."),
      AAA_NC_LOG_TEXT("Recv node is %s."), AAA_NC_NO_NODE},
     AAA_NC_FAILED,
     AAA_NC_BAD_CHANGE,
     {7},
     methodChange,
     methodEnd},
    AAA_NC_LOG_TEXT("Set domain authen info: groupName=%s, type=%d."),
    AAA_NC_LOG_TEXT("Set domain authen info: domainName=%s, type=%d,cmdoverflag:%s."),
    AAA_NC_FIRST,
    kSeenDomain | kSeenProtocol | kSeenType | kSeenName,
    false,
    0,
    {{"dot1x", 0}, {"default", 5}},
    {{"radius-group", 3}, {"tacacs-group", 2}},
};

// The codes of the group types are authentication's, swapped: the service
// expects just these.
static constexpr MethodHandler kAccount = {
    {{"aaaNcDomainAccountConfChanges", "aaaNcDomainAccountLeafChangesParse",
      "aaaNcDomainAccountOneLeafChangeParse", "aaaNcDomainAccountInfoFill"},
     {AAA_NC_LOG_TEXT("Xpath for aaa domain accounting dot1x change: %s, notify event %d."),
      AAA_NC_LOG_TEXT("Domain account xpath %s, type %d, change oper %d."),
      AAA_NC_LOG_TEXT("Recv node is %s."), AAA_NC_NO_NODE},
     AAA_NC_FAILED,
     AAA_NC_BAD_CHANGE,
     {7},
     methodChange,
     methodEnd},
    AAA_NC_LOG_TEXT("Set domain account info: groupName=%s, type=%d."),
    {},
    AAA_NC_SECOND,
    kSeenDomain | kSeenProtocol | kSeenStage | kSeenType | kSeenName,
    true,
    2,
    {{"dot1x", 2}, {"default", 6}},
    {{"radius-group", 2}, {"tacacs-group", 3}},
};

static int methodConfChanges(const MethodHandler &handler, sr_session_ctx_t *session,
                             const char *xpath, sr_notif_event_t event)
{
    MethodWalk walk(handler);
    return aaaNcChangesWalk(walk, session, xpath, event);
}

int aaaNcDomainAuthenConfChanges(sr_session_ctx_t *session, const char *xpath,
                                 sr_notif_event_t event, void * /*private_ctx*/)
{
    return methodConfChanges(kAuthen, session, xpath, event);
}

int aaaNcDomainAccountConfChanges(sr_session_ctx_t *session, const char *xpath,
                                  sr_notif_event_t event, void * /*private_ctx*/)
{
    return methodConfChanges(kAccount, session, xpath, event);
}
