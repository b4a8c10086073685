// A plug-in that does what the real one never does. AAANC_ODD_PLUGIN names it:
//   init    initialisation fails with 4
//   verify  VERIFY of the global options is refused with 7
//   abort   as verify, and ABORT returns 9
//   hang    callbacks never return
//   crash   callbacks bring the process down
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

#include "sysrepo.h"

namespace
{

bool wants(const char *oddity)
{
    const char *wanted = std::getenv("AAANC_ODD_PLUGIN");
    return wanted != nullptr && std::strcmp(wanted, oddity) == 0;
}

int callback(sr_session_ctx_t *, const char *, sr_notif_event_t event, void *)
{
    while (wants("hang")) {
        pause();
    }
    if (wants("crash")) {
        kill(getpid(), SIGKILL);
    }
    if (event == SR_EV_VERIFY && (wants("verify") || wants("abort"))) {
        return 7;
    }
    return event == SR_EV_ABORT && wants("abort") ? 9 : 0;
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) int sr_plugin_init_cb(sr_session_ctx_t *session,
                                                             void **private_ctx)
{
    if (wants("init")) {
        return 4;
    }
    sr_subscription_ctx_t *subscription = nullptr;
    const int code = sr_subtree_change_subscribe(session, "/orvek-aaa:sysAaa/aaaGlobal", callback,
                                                 nullptr, 0, SR_SUBSCR_DEFAULT, &subscription);
    *private_ctx = subscription;
    return code;
}

__attribute__((visibility("default"))) void sr_plugin_cleanup_cb(sr_session_ctx_t *session,
                                                                 void *private_ctx)
{
    sr_unsubscribe(session, static_cast<sr_subscription_ctx_t *>(private_ctx));
}
}
