// AAA_NC_MSG_TACACS_SERVER: one TACACS server (RFC 8907).
//
// It is not the RADIUS record with other names: it starts with four reserved
// bytes, has one port and no set of given fields, and ends with the priority.
#pragma once

#include "aaa_nc/server.hpp"

struct AaaNcTacacsServerInfo {
    std::uint8_t reserved0[4]; // zero
    AaaNcServerName name;
    std::uint32_t Port; // TCP port
    AaaNcServerKey key;
    std::uint32_t priority;       // 0 to 255
    std::uint8_t reserved488[32]; // zero
};

AAA_NC_FIELD(AaaNcTacacsServerInfo, reserved0, 0, 4);
AAA_NC_FIELD(AaaNcTacacsServerInfo, name, 4, 84);
AAA_NC_FIELD(AaaNcTacacsServerInfo, Port, 88, 4);
AAA_NC_FIELD(AaaNcTacacsServerInfo, key, 92, 392);
AAA_NC_FIELD(AaaNcTacacsServerInfo, priority, 484, 4);
AAA_NC_FIELD(AaaNcTacacsServerInfo, reserved488, 488, 32);
AAA_NC_RECORD(AaaNcTacacsServerInfo, 520);
