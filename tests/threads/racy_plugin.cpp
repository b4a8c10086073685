// A plug-in whose callbacks share a counter without a lock.
#include "sysrepo.h"

namespace
{

int calls = 0;

int countCall(sr_session_ctx_t * /*session*/, const char * /*xpath*/, sr_notif_event_t /*event*/,
              void * /*private_ctx*/)
{
    ++calls;
    return 0;
}

constexpr const char *kSubtrees[] = {
    "/orvek-aaa:sysAaa/aaaGlobal",
    "/orvek-aaa:sysAaa/aaaSrcInterface/srcInterface",
    "/orvek-aaa:sysAaa/aaaGroup/serverGroup",
    "/orvek-aaa:sysAaa/aaaGroupVrf/serverGroup",
    "/orvek-aaa:sysAaa/aaaDomain/domainInfo",
    "/orvek-aaa:sysAaa/radiusIpv4Server/radiusIpv4ServerInfo",
    "/orvek-aaa:sysAaa/radiusIpv6Server/radiusIpv6ServerInfo",
    "/orvek-aaa:sysAaa/tacacsIpv4Server/tacacsIpv4ServerInfo",
    "/orvek-aaa:sysAaa/tacacsIpv6Server/tacacsIpv6ServerInfo",
    "/orvek-aaa:sysAaa/aaaDomainAuthenInfo/authenInfo",
    "/orvek-aaa:sysAaa/aaaDomainAccountInfo/accountInfo",
};

} // namespace

extern "C" {

__attribute__((visibility("default"))) int sr_plugin_init_cb(sr_session_ctx_t *session,
                                                             void **private_ctx)
{
    sr_subscription_ctx_t *subscription = nullptr;
    for (const char *subtree : kSubtrees) {
        sr_subtree_change_subscribe(session, subtree, countCall, nullptr, 0, SR_SUBSCR_CTX_REUSE,
                                    &subscription);
    }
    *private_ctx = subscription;
    return SR_ERR_OK;
}

__attribute__((visibility("default"))) void sr_plugin_cleanup_cb(sr_session_ctx_t *session,
                                                                 void *private_ctx)
{
    sr_unsubscribe(session, static_cast<sr_subscription_ctx_t *>(private_ctx));
}
}
