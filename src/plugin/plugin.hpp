// What libaaa-nc.so exports: the two entry points that the sysrepo plug-in
// daemon looks up, and two integers that some hosts look up.
#pragma once

#include "sysrepo.h"

#define AAA_NC_EXPORT __attribute__((visibility("default")))

extern "C" {

// Makes the subscriptions and stores their common context in *private_ctx, for
// sr_plugin_cleanup_cb(). Returns SR_ERR_OK, or the code of the first
// subscription that failed; then nothing is stored, and subscriptions made
// before it stay with sysrepo. Runs on the daemon's thread; `session` is lent.
AAA_NC_EXPORT int sr_plugin_init_cb(sr_session_ctx_t *session, void **private_ctx);

// Ends all subscriptions.
AAA_NC_EXPORT void sr_plugin_cleanup_cb(sr_session_ctx_t *session, void *private_ctx);

// Always zero.
AAA_NC_EXPORT extern int SYSTEM_SCRIPT_CHS;
AAA_NC_EXPORT extern int SYSTEM_SCRIPT_CHS_INTERFACE;
}
