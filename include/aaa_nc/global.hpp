// Payloads of the device-wide settings.
#pragma once

#include "aaa_nc/layout.hpp"

// AAA_NC_MSG_START_FAIL: the start-failure policy.
struct AaaNcStartFailInfo {
    std::uint8_t startFailType; // the service's own code
};

AAA_NC_FIELD(AaaNcStartFailInfo, startFailType, 0, 1);
AAA_NC_RECORD(AaaNcStartFailInfo, 1);

// AAA_NC_MSG_ACCOUNT_INTERVAL: the accounting update interval.
struct AaaNcAccountIntervalInfo {
    std::uint32_t accountInterval; // in the service's own unit
};

AAA_NC_FIELD(AaaNcAccountIntervalInfo, accountInterval, 0, 4);
AAA_NC_RECORD(AaaNcAccountIntervalInfo, 4);
