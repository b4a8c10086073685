// The requests that the AAA service takes: `eMsgType` of AaaNcParam.
#pragma once

#include <cstdint>

enum AaaNcMsgType : std::uint32_t {
    AAA_NC_MSG_DOMAIN = 0,            // AaaNcDomainInfo
    AAA_NC_MSG_DOMAIN_METHOD = 1,     // AaaNcDomainMethodInfo
    AAA_NC_MSG_ACCOUNT_INTERVAL = 5,  // AaaNcAccountIntervalInfo
    AAA_NC_MSG_SRC_INTERFACE = 19,    // AaaNcSrcInterfaceInfo
    AAA_NC_MSG_START_FAIL = 21,       // AaaNcStartFailInfo
    AAA_NC_MSG_RADIUS_GROUP = 22,     // AaaNcServerGroupInfo
    AAA_NC_MSG_RADIUS_GROUP_VRF = 24, // AaaNcRadiusGroupVrfInfo
    AAA_NC_MSG_TACACS_GROUP = 29,     // AaaNcServerGroupInfo
    AAA_NC_MSG_TACACS_SERVER = 30,    // AaaNcTacacsServerInfo
    AAA_NC_MSG_TACACS_GROUP_VRF = 31, // AaaNcTacacsGroupVrfInfo
    AAA_NC_MSG_RADIUS_SERVER = 63     // AaaNcRadiusServerInfo
};
