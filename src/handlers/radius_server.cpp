// /orvek-aaa:sysAaa/radiusIpv4Server/radiusIpv4ServerInfo and its IPv6 twin:
// the changed leaves of a list entry are gathered, and go out as one request
// when a change of another entry comes, or the end of the changes.
#include "aaa_nc/radius_server.hpp"

#include <cstdlib>

#include "gnl.h"
#include "handlers/handlers.hpp"
#include "handlers/server.hpp"

// What tells the IPv4 list from the IPv6 list, beside names and texts.
struct RadiusHandler : AaaNcHandler {
    AaaNcLeafTable leaves;
    std::uint8_t family;
    const char *list;      // list node
    const char *keys[4];   // its keys, in the order of kKeys
    int lastRefusedResult; // of a walk's last request; 0: as that of any other
};

struct RadiusWalk : AaaNcServerWalk {
    const RadiusHandler &list;
    AaaNcRadiusServerInfo info{};
    AaaNcRadiusServerKey gathered{}; // the entry that info is of; in use once it has a name

    explicit RadiusWalk(const RadiusHandler &theList)
        : AaaNcServerWalk(theList, &info, theList.family), list(theList)
    {
    }
};

// A key that comes before its type counts as a cipher key. The type stays not
// given in setFlag.
static int radiusKeyStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value)
{
    if ((gather.seen & AAA_NC_SEEN_KEY_TYPE) == 0) {
        static_cast<RadiusWalk &>(gather).info.key.keyType = 1;
    }
    return aaaNcServerKeyStore(gather, leaf, value);
}

// The list keys have no bit in setFlag: they are always there.
static constexpr AaaNcLeaf kLeaves[] = {
    {"GroupName", 0, aaaNcTextStore, AAA_NC_IN(AaaNcRadiusServerInfo, entry.name.groupName)},
    {"ServerAddr", 0, aaaNcServerAddrStore, AAA_NC_IN(AaaNcRadiusServerInfo, entry.name)},
    {"ServerAuthenPort", 0, aaaNcUint16Store, AAA_NC_IN(AaaNcRadiusServerInfo, entry.authPort)},
    {"ServerAccountPort", 0, aaaNcUint16Store, AAA_NC_IN(AaaNcRadiusServerInfo, entry.acctPort)},
    {"ServerKeyType", AAA_NC_SET_KEY_TYPE, aaaNcServerKeyTypeStore,
     AAA_NC_IN(AaaNcRadiusServerInfo, key)},
    {"ServerKey", AAA_NC_SET_KEY, radiusKeyStore, AAA_NC_IN(AaaNcRadiusServerInfo, key)},
    {"ServerPriority", AAA_NC_SET_PRIORITY, aaaNcUint8Store,
     AAA_NC_IN(AaaNcRadiusServerInfo, priority)},
};

static std::uint32_t portParse(const char *text)
{
    return static_cast<std::uint32_t>(std::strtol(text, nullptr, 10));
}

// The list keys of an entry, in the order that they are read in. A missing one
// is logged under IPv4's name in either list, and the authentication port under
// that of another list's key; these are the names that people know.
struct RadiusKey {
    const char *printed;
    void (*store)(AaaNcRadiusServerKey &key, const char *text);
};

static constexpr RadiusKey kKeys[] = {
    {"serverGroupType",
     [](AaaNcRadiusServerKey &key, const char *text) { key.authPort = portParse(text); }},
    {"radiusIpv4ServerAccountPort",
     [](AaaNcRadiusServerKey &key, const char *text) { key.acctPort = portParse(text); }},
    {"radiusIpv4ServerAddr",
     [](AaaNcRadiusServerKey &key, const char *text) {
         gnl_strlcpy(key.name.Addr, text, sizeof(key.name.Addr));
     }},
    {"radiusIpv4GroupName",
     [](AaaNcRadiusServerKey &key, const char *text) {
         gnl_strlcpy(key.name.groupName, text, sizeof(key.name.groupName));
     }},
};

// Reads the list keys of the change's entry. Returns 0 or, logged, 5.
static int radiusKeyGet(const RadiusWalk &walk, const AaaNcChange &change,
                        AaaNcRadiusServerKey &key)
{
    for (std::size_t i = 0; i < sizeof(kKeys) / sizeof(kKeys[0]); ++i) {
        const char *text = nullptr;
        const int rc = aaaNcChangeKeyGet(walk, change, walk.list.list, walk.list.keys[i],
                                         kKeys[i].printed, &text);
        if (rc != 0) {
            return rc;
        }
        kKeys[i].store(key, text);
    }
    key.name.family = walk.family;
    return 0;
}

static bool isSameEntry(const AaaNcRadiusServerKey &a, const AaaNcRadiusServerKey &b)
{
    return std::strcmp(a.name.groupName, b.name.groupName) == 0 &&
           std::strcmp(a.name.Addr, b.name.Addr) == 0 && a.authPort == b.authPort &&
           a.acctPort == b.acctPort;
}

// Sends what is gathered, with the operation of the last change taken, even
// where that is another entry's, and even where nothing is gathered. Where
// `refusedResult` is not 0, it is the result of a refused request.
static int radiusFlush(RadiusWalk &walk, int refusedResult)
{
    AaaNcRadiusServerInfo &info = walk.info;
    if (info.entry.name.groupName[0] == '\0') {
        info.entry = walk.gathered;
    }
    info.setFlag = static_cast<std::uint16_t>(walk.seen);
    AAA_NC_DBG(walk.handler.function.oneLeafChangeParse,
               "Set server info: groupName=%s, Addr=%s, authPort=%d, acctPort=%d, "
               "setFlag=%d,priority=%d.",
               info.entry.name.groupName, info.entry.name.Addr, info.entry.authPort,
               info.entry.acctPort, info.setFlag, info.priority);
    if (aaaNcServerAddrIsBad(info.entry.name)) {
        return AAA_NC_REFUSED;
    }
    aaaNcWalkParamSet(walk, AAA_NC_MSG_RADIUS_SERVER, sizeof(info), &info);
    const int rc = aaaNcWalkSend(walk);
    return rc != 0 && refusedResult != 0 ? refusedResult : rc;
}

static int radiusChange(AaaNcWalk &base, const AaaNcChange &change)
{
    auto &walk = static_cast<RadiusWalk &>(base);
    AaaNcRadiusServerKey key{};
    int rc = radiusKeyGet(walk, change, key);
    if (rc != 0) {
        return rc;
    }
    const bool gathers = walk.gathered.name.groupName[0] != '\0';
    if (gathers && !isSameEntry(walk.gathered, key)) {
        rc = radiusFlush(walk, 0);
        if (rc != 0) {
            return rc;
        }
        walk.info = {};
        walk.seen = 0;
    }
    walk.gathered = key;

    const AaaNcLeaf *leaf = aaaNcLeafFind(walk.list.leaves, change.leaf);
    return leaf != nullptr ? aaaNcLeafStore(walk, *leaf, change) : 0;
}

static int radiusEnd(AaaNcWalk &base)
{
    auto &walk = static_cast<RadiusWalk &>(base);
    return radiusFlush(walk, walk.list.lastRefusedResult);
}

static constexpr RadiusHandler kRadiusIpv4 = {
    {{"aaaNcRadiusIpv4ConfChanges", "aaaNcRadiusIpv4LeafChangesParse",
      "aaaNcRadiusIpv4OneLeafChangeParse", "aaaNcRadiusIpv4ServerInfoFill"},
     {AAA_NC_LOG_TEXT("Config radius ipv4 server: path %s, notify event %d."),
      AAA_NC_LOG_TEXT("Radius ipv4 server xpath %s, type %d, change oper %d."),
      AAA_NC_LOG_TEXT("Recv node is %s."), AAA_NC_NO_LEAF_NAME},
     AAA_NC_NO_LEAF,
     AAA_NC_BAD_CHANGE,
     {{43}, AAA_NC_NO_LEAF, AAA_NC_REFUSED},
     radiusChange,
     radiusEnd},
    {"radiusIpv4", kLeaves},
    AAA_NC_FAMILY_IPV4,
    "radiusIpv4ServerInfo",
    {"radiusIpv4ServerAuthenPort", "radiusIpv4ServerAccountPort", "radiusIpv4ServerAddr",
     "radiusIpv4GroupName"},
    0,
};

static constexpr RadiusHandler kRadiusIpv6 = {
    {{"aaaNcRadiusIpv6ConfChanges", "aaaNcRadiusIpv6LeafChangesParse",
      "aaaNcRadiusIpv6OneLeafChangeParse", "aaaNcRadiusIpv6ServerInfoFill"},
     {AAA_NC_LOG_TEXT("Config radius ipv6 server: path %s, notify event %d."),
      AAA_NC_LOG_TEXT("Radius ipv6 server xpath %s, type %d, change oper %d."),
      AAA_NC_LOG_TEXT("Recv node is %s."), AAA_NC_NO_LEAF_NAME},
     AAA_NC_NO_LEAF,
     AAA_NC_BAD_CHANGE,
     {{43}, AAA_NC_NO_LEAF, AAA_NC_REFUSED},
     radiusChange,
     radiusEnd},
    {"radiusIpv6", kLeaves},
    AAA_NC_FAMILY_IPV6,
    "radiusIpv6ServerInfo",
    {"radiusIpv6ServerAuthenPort", "radiusIpv6ServerAccountPort", "radiusIpv6ServerAddr",
     "radiusIpv6GroupName"},
    AAA_NC_FAILED, // even for 43, which tells more at any other request
};

static int radiusConfChanges(const RadiusHandler &handler, sr_session_ctx_t *session,
                             const char *xpath, sr_notif_event_t event)
{
    RadiusWalk walk(handler);
    return aaaNcChangesWalk(walk, session, xpath, event);
}

int aaaNcRadiusIpv4ConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                               void * /*private_ctx*/)
{
    return radiusConfChanges(kRadiusIpv4, session, xpath, event);
}

int aaaNcRadiusIpv6ConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                               void * /*private_ctx*/)
{
    return radiusConfChanges(kRadiusIpv6, session, xpath, event);
}
