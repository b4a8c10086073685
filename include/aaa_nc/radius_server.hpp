// AAA_NC_MSG_RADIUS_SERVER: one RADIUS server (RFC 2865, RFC 2866).
#pragma once

#include "aaa_nc/server.hpp"

// The list keys of a server; the head of its record.
struct AaaNcRadiusServerKey {
    AaaNcServerName name;
    std::uint32_t authPort; // UDP port for authentication
    std::uint32_t acctPort; // UDP port for accounting
};

AAA_NC_FIELD(AaaNcRadiusServerKey, name, 0, 84);
AAA_NC_FIELD(AaaNcRadiusServerKey, authPort, 84, 4);
AAA_NC_FIELD(AaaNcRadiusServerKey, acctPort, 88, 4);
AAA_NC_RECORD(AaaNcRadiusServerKey, 92);

// Bits of setFlag. The keys of the entry are always there and have none.
enum : std::uint16_t {
    AAA_NC_SET_KEY_TYPE = 0x10, // key.keyType was given
    AAA_NC_SET_KEY = 0x20,      // a key was given
    AAA_NC_SET_PRIORITY = 0x40  // priority was given
};

struct AaaNcRadiusServerInfo {
    AaaNcRadiusServerKey entry;
    std::uint16_t setFlag;      // AAA_NC_SET_... bits
    std::uint8_t reserved94[2]; // zero
    std::uint32_t priority;     // 0 to 255
    AaaNcServerKey key;
};

AAA_NC_FIELD(AaaNcRadiusServerInfo, entry, 0, 92);
AAA_NC_FIELD(AaaNcRadiusServerInfo, setFlag, 92, 2);
AAA_NC_FIELD(AaaNcRadiusServerInfo, reserved94, 94, 2);
AAA_NC_FIELD(AaaNcRadiusServerInfo, priority, 96, 4);
AAA_NC_FIELD(AaaNcRadiusServerInfo, key, 100, 392);
AAA_NC_RECORD(AaaNcRadiusServerInfo, 492);
