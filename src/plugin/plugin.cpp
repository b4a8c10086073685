// What the sysrepo plug-in daemon calls, and the subscriptions.
#include "plugin/plugin.hpp"

#include "handlers/handlers.hpp"
#include "plugin/log.hpp"
#include "transport/request.hpp"

// Looked up by hosts, used by nobody here.
int SYSTEM_SCRIPT_CHS;
int SYSTEM_SCRIPT_CHS_INTERFACE;

static const char kModule[] = "orvek-aaa";

struct Subscription {
    const char *xpath;
    sr_subtree_change_cb callback;
};

static constexpr Subscription kSubscriptions[] = {
    {"/orvek-aaa:sysAaa/aaaGlobal", aaaNcGlobalConfChanges},
    {"/orvek-aaa:sysAaa/aaaSrcInterface/srcInterface", aaaNcSrcInterfaceConfChanges},
    {"/orvek-aaa:sysAaa/aaaGroup/serverGroup", aaaNcServerGroupConfChanges},
    {"/orvek-aaa:sysAaa/aaaGroupVrf/serverGroup", aaaNcServerGroupVrfConfChanges},
    {"/orvek-aaa:sysAaa/aaaDomain/domainInfo", aaaNcDomainConfChanges},
    {"/orvek-aaa:sysAaa/radiusIpv4Server/radiusIpv4ServerInfo", aaaNcRadiusIpv4ConfChanges},
    {"/orvek-aaa:sysAaa/radiusIpv6Server/radiusIpv6ServerInfo", aaaNcRadiusIpv6ConfChanges},
    {"/orvek-aaa:sysAaa/tacacsIpv4Server/tacacsIpv4ServerInfo", aaaNctacacsIpv4ConfChanges},
    {"/orvek-aaa:sysAaa/tacacsIpv6Server/tacacsIpv6ServerInfo", aaaNctacacsIpv6ConfChanges},
    {"/orvek-aaa:sysAaa/aaaDomainAuthenInfo/authenInfo", aaaNcDomainAuthenConfChanges},
    {"/orvek-aaa:sysAaa/aaaDomainAccountInfo/accountInfo", aaaNcDomainAccountConfChanges},
};

enum : std::size_t { kLastSubscription = sizeof(kSubscriptions) / sizeof(kSubscriptions[0]) - 1 };

static void subscribeFailureLog(std::size_t row, int rc)
{
    // A failed accounting subscription is reported under the authentication
    // xpath, the row above it; what watches the log relies on it.
    const std::size_t named = row == kLastSubscription ? row - 1 : row;
    AAA_NC_ERR("sr_plugin_init_cb", "Module %s subscribe change for subtree %s failed : %s.",
               kModule, kSubscriptions[named].xpath, sr_strerror(rc));
    AAA_NC_DBG("sr_plugin_init_cb", "AAA Module '%s' plugin initialization failed : %s\n.", kModule,
               sr_strerror(rc));
}

int sr_plugin_init_cb(sr_session_ctx_t *session, void **private_ctx)
{
    AAA_NC_DBG("sr_plugin_init_cb", "AAA Module %s subscribe sub tree %s.", kModule,
               "/orvek-aaa:sysAaa");

    // The first subscription opens the context that all others join, so that
    // one unsubscribe ends them all.
    sr_subscription_ctx_t *subscription = nullptr;
    std::uint32_t opts = SR_SUBSCR_DEFAULT;
    for (std::size_t row = 0; row <= kLastSubscription; ++row) {
        const int rc = sr_subtree_change_subscribe(session, kSubscriptions[row].xpath,
                                                   kSubscriptions[row].callback, nullptr, 0, opts,
                                                   &subscription);
        if (rc != SR_ERR_OK) {
            subscribeFailureLog(row, rc);
            return rc;
        }
        opts = SR_SUBSCR_CTX_REUSE;
    }
    *private_ctx = subscription;
    aaaNcCmfClientReg();
    return SR_ERR_OK;
}

void sr_plugin_cleanup_cb(sr_session_ctx_t *session, void *private_ctx)
{
    sr_unsubscribe(session, static_cast<sr_subscription_ctx_t *>(private_ctx));
}
