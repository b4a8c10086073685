// Payloads of the server groups and of their VRF bindings.
#pragma once

#include "aaa_nc/layout.hpp"

// AAA_NC_MSG_RADIUS_GROUP and AAA_NC_MSG_TACACS_GROUP: the message type tells
// the protocol.
struct AaaNcServerGroupInfo {
    char groupName[33]; // NUL-padded, at most 32 characters
};

AAA_NC_FIELD(AaaNcServerGroupInfo, groupName, 0, 33);
AAA_NC_RECORD(AaaNcServerGroupInfo, 33);

// AAA_NC_MSG_RADIUS_GROUP_VRF
struct AaaNcRadiusGroupVrfInfo {
    std::uint8_t reserved0[5];   // zero
    char groupName[33];          // NUL-terminated, at most 32 characters
    std::uint8_t reserved38[18]; // zero
    char vrfName[33];            // NUL-terminated, at most 32 characters
    std::uint8_t reserved89[19]; // zero
};

AAA_NC_FIELD(AaaNcRadiusGroupVrfInfo, reserved0, 0, 5);
AAA_NC_FIELD(AaaNcRadiusGroupVrfInfo, groupName, 5, 33);
AAA_NC_FIELD(AaaNcRadiusGroupVrfInfo, reserved38, 38, 18);
AAA_NC_FIELD(AaaNcRadiusGroupVrfInfo, vrfName, 56, 33);
AAA_NC_FIELD(AaaNcRadiusGroupVrfInfo, reserved89, 89, 19);
AAA_NC_RECORD(AaaNcRadiusGroupVrfInfo, 108);

// AAA_NC_MSG_TACACS_GROUP_VRF
struct AaaNcTacacsGroupVrfInfo {
    std::uint8_t reserved0[5];   // zero
    char groupName[33];          // NUL-terminated, at most 32 characters
    std::uint8_t reserved38[10]; // zero
    char vrfName[33];            // NUL-terminated, at most 32 characters
    std::uint8_t reserved81[3];  // zero
};

AAA_NC_FIELD(AaaNcTacacsGroupVrfInfo, reserved0, 0, 5);
AAA_NC_FIELD(AaaNcTacacsGroupVrfInfo, groupName, 5, 33);
AAA_NC_FIELD(AaaNcTacacsGroupVrfInfo, reserved38, 38, 10);
AAA_NC_FIELD(AaaNcTacacsGroupVrfInfo, vrfName, 48, 33);
AAA_NC_FIELD(AaaNcTacacsGroupVrfInfo, reserved81, 81, 3);
AAA_NC_RECORD(AaaNcTacacsGroupVrfInfo, 84);
