// /orvek-aaa:sysAaa/radiusIpv4Server/radiusIpv4ServerInfo and its IPv6 twin:
// the changed leaves of a list entry are gathered, and go out as one request
// when a change of another entry comes, or the end of the changes.
#include "aaa_nc/radius_server.hpp"

#include <cstdlib>
#include <cstring>

#include "gnl.h"
#include "handlers/handlers.hpp"
#include "handlers/server.hpp"

// What tells the IPv4 list from the IPv6 list, beside names and texts.
struct RadiusHandler : AaaNcHandler {
    AaaNcTwin twin;
    std::uint8_t family;
    const char *node;      // of the list
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
    if ((gather.seen & AAA_NC_SET_KEY_TYPE) == 0) {
        static_cast<RadiusWalk &>(gather).info.key.keyType = AAA_NC_KEY_CIPHER;
    }
    return aaaNcServerKeyStore(gather, leaf, value);
}

static constexpr AaaNcStore kAsRadiusKey = {radiusKeyStore, AAA_NC_AS_KEY.size};

// The list keys have no bit in setFlag: they are always there.
// clang-format off
static constexpr AaaNcLeaf kLeaves[] = {
    {{"radiusIpv4GroupName", "radiusIpv6GroupName"},
     0, AAA_NC_AS_TEXT, AAA_NC_IN(AaaNcRadiusServerInfo, entry.name.groupName)},
    {{"radiusIpv4ServerAddr", "radiusIpv6ServerAddr"},
     0, AAA_NC_AS_ADDR, AAA_NC_IN(AaaNcRadiusServerInfo, entry.name)},
    {{"radiusIpv4ServerAuthenPort", "radiusIpv6ServerAuthenPort"},
     0, AAA_NC_AS_UINT16, AAA_NC_IN(AaaNcRadiusServerInfo, entry.authPort)},
    {{"radiusIpv4ServerAccountPort", "radiusIpv6ServerAccountPort"},
     0, AAA_NC_AS_UINT16, AAA_NC_IN(AaaNcRadiusServerInfo, entry.acctPort)},
    {{"radiusIpv4ServerKeyType", "radiusIpv6ServerKeyType"},
     AAA_NC_SET_KEY_TYPE, AAA_NC_AS_KEY_TYPE, AAA_NC_IN(AaaNcRadiusServerInfo, key)},
    {{"radiusIpv4ServerKey", "radiusIpv6ServerKey"},
     AAA_NC_SET_KEY, kAsRadiusKey, AAA_NC_IN(AaaNcRadiusServerInfo, key)},
    {{"radiusIpv4ServerPriority", "radiusIpv6ServerPriority"},
     AAA_NC_SET_PRIORITY, AAA_NC_AS_UINT8, AAA_NC_IN(AaaNcRadiusServerInfo, priority)},
};
// clang-format on

// Stores the low 32 bits of strtol(). Nearly every port is a few digits, and both
// are read at each change, so those are not left to it.
static void portKeyStore(char *field, const char *text, std::size_t /*size*/)
{
    std::uint32_t port = 0;
    const char *end = text;
    for (; *end >= '0' && *end <= '9'; ++end) {
        port = port * 10 + static_cast<std::uint32_t>(*end - '0');
    }
    if (*end != '\0' || end - text > 9) {
        port = static_cast<std::uint32_t>(std::strtol(text, nullptr, 10));
    }
    std::memcpy(field, &port, sizeof(port));
}

static void textKeyStore(char *field, const char *text, std::size_t size)
{
    gnl_strlcpy(field, text, size);
}

// The list keys of an entry, in the order that they are read in. A missing one
// is logged under IPv4's name in either list, and the authentication port under
// that of another list's key; these are the names that people know.
struct RadiusKey {
    const char *name[2]; // by AaaNcTwin
    const char *printed;
    void (*store)(char *field, const char *text, std::size_t size);
    std::size_t offset; // of the field in AaaNcRadiusServerKey
    std::size_t size;   // of the field
};

static constexpr RadiusKey kKeys[] = {
    {{"radiusIpv4ServerAuthenPort", "radiusIpv6ServerAuthenPort"},
     "serverGroupType",
     portKeyStore,
     AAA_NC_IN(AaaNcRadiusServerKey, authPort)},
    {{"radiusIpv4ServerAccountPort", "radiusIpv6ServerAccountPort"},
     "radiusIpv4ServerAccountPort",
     portKeyStore,
     AAA_NC_IN(AaaNcRadiusServerKey, acctPort)},
    {{"radiusIpv4ServerAddr", "radiusIpv6ServerAddr"},
     "radiusIpv4ServerAddr",
     textKeyStore,
     AAA_NC_IN(AaaNcRadiusServerKey, name.Addr)},
    {{"radiusIpv4GroupName", "radiusIpv6GroupName"},
     "radiusIpv4GroupName",
     textKeyStore,
     AAA_NC_IN(AaaNcRadiusServerKey, name.groupName)},
};

// Reads the list keys of the change's entry. Returns 0 or, logged, 5.
static int radiusKeyGet(const RadiusWalk &walk, const AaaNcChange &change,
                        AaaNcRadiusServerKey &key)
{
    for (const RadiusKey &known : kKeys) {
        const char *text = nullptr;
        const int rc = aaaNcChangeKeyGet(walk, change, walk.list.node, known.name[walk.list.twin],
                                         known.printed, &text);
        if (rc != 0) {
            return rc;
        }
        known.store(reinterpret_cast<char *>(&key) + known.offset, text, known.size);
    }
    key.name.family = walk.family;
    return 0;
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
    // Both keys were zeroed before they were filled.
    if (std::memcmp(&walk.gathered, &key, sizeof(key)) != 0) {
        if (walk.gathered.name.groupName[0] != '\0') {
            rc = radiusFlush(walk, 0);
            if (rc != 0) {
                return rc;
            }
            walk.info = {};
            walk.seen = 0;
        }
        walk.gathered = key;
    }
    const AaaNcLeaf *leaf = aaaNcLeafFind(kLeaves, walk.list.twin, change.leaf);
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
     {1, {43}, 5},
     radiusChange,
     radiusEnd},
    AAA_NC_FIRST,
    AAA_NC_FAMILY_IPV4,
    "radiusIpv4ServerInfo",
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
     {1, {43}, 5},
     radiusChange,
     radiusEnd},
    AAA_NC_SECOND,
    AAA_NC_FAMILY_IPV6,
    "radiusIpv6ServerInfo",
    7, // even for 43, which tells more at any other request
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
