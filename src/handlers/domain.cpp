// /orvek-aaa:sysAaa/aaaDomain/domainInfo: one request for each domain that
// comes or goes.
#include "aaa_nc/domain.hpp"

#include <cstring>

#include "handlers/handlers.hpp"
#include "walk/text.hpp"
#include "walk/walk.hpp"

static const char kName[] = "domainName";

// No blank, no "@", and not the domain that is always there.
static bool domainNameIsValid(const char *name)
{
    return std::strpbrk(name, " @") == nullptr && std::strcmp(name, "default") != 0;
}

static int domainChange(AaaNcWalk &walk, const AaaNcChange &change)
{
    const char *name = nullptr;
    const int rc = aaaNcChangeKeyGet(walk, change, "domainInfo", kName, kName, &name);
    if (rc != 0) {
        return rc;
    }
    AaaNcDomainInfo info{};
    aaaNcTextCopy(info.domainName, name, sizeof(info.domainName));
    info.bSecondConfirm = change.oper == SR_OP_DELETED ? 1 : 0;
    AAA_NC_DBG(walk.handler.function.oneLeafChangeParse,
               "Domain info: doaminName %s, bSecondConfirm %d.", info.domainName,
               info.bSecondConfirm);
    // Refused without a line, for every leaf of the entry.
    if (!domainNameIsValid(info.domainName)) {
        return AAA_NC_REFUSED;
    }
    if (std::strcmp(change.leaf, kName) != 0) {
        return 0;
    }
    aaaNcWalkParamSet(walk, AAA_NC_MSG_DOMAIN, sizeof(info), &info);
    return aaaNcWalkSend(walk);
}

static constexpr AaaNcHandler kDomain = {
    {"aaaNcDomainConfChanges", "aaaNcDomainLeafChangesParse", "aaaNcDomainOneLeafChangeParse",
     nullptr},
    {AAA_NC_LOG_TEXT("Config domain: path %s, notify event %d."),
     {}, // the only handler without a line for each change
     AAA_NC_LOG_TEXT("Receive node name %s."),
     AAA_NC_NO_LEAF_NAME},
    AAA_NC_NO_LEAF,
    AAA_NC_BAD_CHANGE,
    {1, {52, 49}, 8},
    domainChange,
    nullptr,
};

int aaaNcDomainConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                           void * /*private_ctx*/)
{
    AaaNcWalk walk{kDomain};
    return aaaNcChangesWalk(walk, session, xpath, event);
}
