// The device's platform, faked: every function that the plug-in imports, with C
// linkage, recording each call as a line of a trace and behaving as the
// scenario at hand says. An executable that links this must export its symbols
// (ENABLE_EXPORTS), since the plug-in finds them there.
//
// A run belongs to the thread that plays it, so several may play at once; all
// of them must then use one log level and leave it alone, since the plug-in
// reads a single global.
#pragma once

#include "scenario.hpp"

#include <array>
#include <functional>

namespace aaanc::test
{

// A row of the subscription table: what the plug-in subscribes to, in order.
struct Subscription {
    const char *callback; // name of the operation in the log lines
    const char *xpath;
    std::uint32_t opts;
};

inline constexpr std::array<Subscription, 11> kSubscriptions = {{
    {"aaaNcGlobalConfChanges", "/orvek-aaa:sysAaa/aaaGlobal", 0},
    {"aaaNcSrcInterfaceConfChanges", "/orvek-aaa:sysAaa/aaaSrcInterface/srcInterface", 1},
    {"aaaNcServerGroupConfChanges", "/orvek-aaa:sysAaa/aaaGroup/serverGroup", 1},
    {"aaaNcServerGroupVrfConfChanges", "/orvek-aaa:sysAaa/aaaGroupVrf/serverGroup", 1},
    {"aaaNcDomainConfChanges", "/orvek-aaa:sysAaa/aaaDomain/domainInfo", 1},
    {"aaaNcRadiusIpv4ConfChanges", "/orvek-aaa:sysAaa/radiusIpv4Server/radiusIpv4ServerInfo", 1},
    {"aaaNcRadiusIpv6ConfChanges", "/orvek-aaa:sysAaa/radiusIpv6Server/radiusIpv6ServerInfo", 1},
    {"aaaNctacacsIpv4ConfChanges", "/orvek-aaa:sysAaa/tacacsIpv4Server/tacacsIpv4ServerInfo", 1},
    {"aaaNctacacsIpv6ConfChanges", "/orvek-aaa:sysAaa/tacacsIpv6Server/tacacsIpv6ServerInfo", 1},
    {"aaaNcDomainAuthenConfChanges", "/orvek-aaa:sysAaa/aaaDomainAuthenInfo/authenInfo", 1},
    {"aaaNcDomainAccountConfChanges", "/orvek-aaa:sysAaa/aaaDomainAccountInfo/accountInfo", 1},
}};

// Loads the plug-in as the daemon does, initialises it and keeps the callback
// of each subscription. Throws std::runtime_error when any of that fails.
void loadPlugin(const std::string &path);

// Calls one callback of the loaded plug-in; the trace ends with its result.
Trace play(const Scenario &scenario);

// How the platform behaves during sr_plugin_init_cb().
struct InitScenario {
    int log_level = 4;
    std::size_t failing_subscription = 0; // 1-based; 0: none fails
    std::int32_t subscription_result = 0; // what the failing one returns
    std::int32_t registration_result = 0;
    // Called while each subscribe call runs, with its 1-based number: callbacks
    // may be delivered before the call returns.
    std::function<void(std::size_t)> during_subscribe;
};

// Calls sr_plugin_init_cb(). Its trace lines, besides strerror and log:
//
//   subscribe <q xpath> callback#N private PTR priority P opts O into CONTEXT -> RC
//       N: the row that this callback was captured from at load, ? for another;
//       CONTEXT: null or context, as *subscription stands before the call
//   register <q service> WORD WORD private PTR -> RC
//       the record, 8 hexadecimal digits a word; what *private_ctx holds by then
//   private PTR                                what *private_ctx holds afterwards
//   result N
//
// PTR is null, context (the subscription context), untouched or other.
Trace playInit(const InitScenario &scenario);

// Calls sr_plugin_cleanup_cb() with the context of the last successful
// initialisation. Its trace lines: unsubscribe PTR -> RC, where RC is
// `unsubscribe_result`.
Trace playCleanup(int log_level, std::int32_t unsubscribe_result);

// An exported integer of the plug-in, or null.
const int *pluginInteger(const char *name);

} // namespace aaanc::test
