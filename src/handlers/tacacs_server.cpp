// /orvek-aaa:sysAaa/tacacsIpv4Server/tacacsIpv4ServerInfo and its IPv6 twin: one
// request each time that all six leaves of a server have been seen, whatever
// their entries. A change of fewer leaves sends nothing.
#include "aaa_nc/tacacs_server.hpp"

#include "handlers/handlers.hpp"
#include "handlers/server.hpp"

enum : std::uint32_t {
    kSeenGroupName = 0x01,
    kSeenAddr = 0x02,
    kSeenPort = 0x04,
    kSeenKeyType = 0x10,
    kSeenKey = 0x20,
    kSeenPriority = 0x40
};

// What tells the IPv4 list from the IPv6 list, beside names and texts.
struct TacacsHandler : AaaNcHandler {
    AaaNcTwin twin;
    std::uint8_t family;
};

struct TacacsWalk : AaaNcServerWalk {
    const TacacsHandler &list;
    AaaNcTacacsServerInfo info{};

    explicit TacacsWalk(const TacacsHandler &theList)
        : AaaNcServerWalk(theList, &info, theList.family), list(theList)
    {
    }
};

// Every leaf has a bit of its own and is required: the request goes out with the
// last of them. An optional leaf behind that one would be the next server's.
// A key that comes before its type counts as a plain key: the type in the record
// is 0 until then.
// clang-format off
static constexpr AaaNcLeaf kLeaves[] = {
    {{"tacacsIpv4GroupName", "tacacsIpv6GroupName"},
     kSeenGroupName, AAA_NC_AS_TEXT, AAA_NC_IN(AaaNcTacacsServerInfo, name.groupName)},
    {{"tacacsIpv4ServerAddr", "tacacsIpv6ServerAddr"},
     kSeenAddr, AAA_NC_AS_ADDR, AAA_NC_IN(AaaNcTacacsServerInfo, name)},
    {{"tacacsIpv4ServerPort", "tacacsIpv6ServerPort"},
     kSeenPort, AAA_NC_AS_UINT16, AAA_NC_IN(AaaNcTacacsServerInfo, Port)},
    {{"tacacsIpv4ServerKeyType", "tacacsIpv6ServerKeyType"},
     kSeenKeyType, AAA_NC_AS_KEY_TYPE, AAA_NC_IN(AaaNcTacacsServerInfo, key)},
    {{"tacacsIpv4ServerKey", "tacacsIpv6ServerKey"},
     kSeenKey, AAA_NC_AS_KEY, AAA_NC_IN(AaaNcTacacsServerInfo, key)},
    {{"tacacsIpv4ServerPriority", "tacacsIpv6ServerPriority"},
     kSeenPriority, AAA_NC_AS_UINT8, AAA_NC_IN(AaaNcTacacsServerInfo, priority)},
};
// clang-format on

static constexpr std::uint32_t kSeenAll = aaaNcSeenBits(kLeaves);

static int tacacsSend(TacacsWalk &walk)
{
    AaaNcTacacsServerInfo &info = walk.info;
    AAA_NC_DBG(walk.handler.function.oneLeafChangeParse,
               "Set server info: groupName=%s, Addr=%s, Port=%d, priority=%d.", info.name.groupName,
               info.name.Addr, info.Port, info.priority);
    if (aaaNcServerAddrIsBad(info.name)) {
        return AAA_NC_REFUSED;
    }
    aaaNcWalkParamSet(walk, AAA_NC_MSG_TACACS_SERVER, sizeof(info), &info);
    info = {};
    walk.seen = 0;
    return aaaNcWalkSend(walk);
}

static int tacacsChange(AaaNcWalk &base, const AaaNcChange &change)
{
    auto &walk = static_cast<TacacsWalk &>(base);
    const AaaNcLeaf *leaf = aaaNcLeafFind(kLeaves, walk.list.twin, change.leaf);
    if (leaf != nullptr) {
        const int rc = aaaNcLeafStore(walk, *leaf, change);
        if (rc != 0) {
            return rc;
        }
    }
    return walk.seen == kSeenAll ? tacacsSend(walk) : 0;
}

// The callbacks' own names have a small t, their inner operations' a capital one.
static constexpr TacacsHandler kTacacsIpv4 = {
    {{"aaaNctacacsIpv4ConfChanges", "aaaNcTacacsIpv4LeafChangesParse",
      "aaaNcTacacsIpv4OneLeafChangeParse", "aaaNcTacacsIpv4ServerInfoFill"},
     {AAA_NC_LOG_TEXT("Config tacacs ipv4 server: path %s, notify event %d."),
      AAA_NC_LOG_TEXT("Tacacs ipv4 server xpath %s, type %d, change oper %d."),
      AAA_NC_LOG_TEXT("Recv node is %s."), AAA_NC_NO_NODE},
     AAA_NC_FAILED,
     AAA_NC_BAD_CHANGE,
     {7},
     tacacsChange,
     nullptr},
    AAA_NC_FIRST,
    AAA_NC_FAMILY_IPV4,
};

static constexpr TacacsHandler kTacacsIpv6 = {
    {{"aaaNctacacsIpv6ConfChanges", "aaaNcTacacsIpv6LeafChangesParse",
      "aaaNcTacacsIpv6OneLeafChangeParse", "aaaNcTacacsIpv6ServerInfoFill"},
     {AAA_NC_LOG_TEXT("Config tacacs ipv6 server: path %s, notify event %d."),
      AAA_NC_LOG_TEXT("Tacacs ipv6 server xpath %s, type %d, change oper %d."),
      AAA_NC_LOG_TEXT("Recv node is %s."), AAA_NC_NO_NODE},
     AAA_NC_FAILED,
     AAA_NC_BAD_CHANGE,
     {7},
     tacacsChange,
     nullptr},
    AAA_NC_SECOND,
    AAA_NC_FAMILY_IPV6,
};

static int tacacsConfChanges(const TacacsHandler &handler, sr_session_ctx_t *session,
                             const char *xpath, sr_notif_event_t event)
{
    TacacsWalk walk(handler);
    return aaaNcChangesWalk(walk, session, xpath, event);
}

int aaaNctacacsIpv4ConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                               void * /*private_ctx*/)
{
    return tacacsConfChanges(kTacacsIpv4, session, xpath, event);
}

int aaaNctacacsIpv6ConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                               void * /*private_ctx*/)
{
    return tacacsConfChanges(kTacacsIpv6, session, xpath, event);
}
