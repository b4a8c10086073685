// The requests that the AAA service takes: `eMsgType` of AaaNcParam.
#pragma once

#include <cstdint>

enum AaaNcMsgType : std::uint32_t {
    AAA_NC_MSG_DOMAIN = 0,            // AaaNcDomainInfo, 68 bytes
    AAA_NC_MSG_DOMAIN_METHOD = 1,     // AaaNcDomainMethodInfo, 244 bytes
    AAA_NC_MSG_ACCOUNT_INTERVAL = 5,  // AaaNcAccountIntervalInfo, 4 bytes
    AAA_NC_MSG_SRC_INTERFACE = 19,    // AaaNcSrcInterfaceInfo, 73 bytes
    AAA_NC_MSG_START_FAIL = 21,       // AaaNcStartFailInfo, 1 byte
    AAA_NC_MSG_RADIUS_GROUP = 22,     // AaaNcServerGroupInfo, 33 bytes
    AAA_NC_MSG_RADIUS_GROUP_VRF = 24, // AaaNcRadiusGroupVrfInfo, 108 bytes
    AAA_NC_MSG_TACACS_GROUP = 29,     // AaaNcServerGroupInfo, 33 bytes
    AAA_NC_MSG_TACACS_SERVER = 30,    // AaaNcTacacsServerInfo, 520 bytes
    AAA_NC_MSG_TACACS_GROUP_VRF = 31, // AaaNcTacacsGroupVrfInfo, 84 bytes
    AAA_NC_MSG_RADIUS_SERVER = 63     // AaaNcRadiusServerInfo, 492 bytes
};
