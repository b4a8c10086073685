// What the RADIUS and the TACACS server record have in common.
#pragma once

#include "aaa_nc/layout.hpp"

// AaaNcServerName::family
enum : std::uint8_t { AAA_NC_FAMILY_IPV4 = 2, AAA_NC_FAMILY_IPV6 = 10 };

// The group and address of a server.
struct AaaNcServerName {
    char groupName[33];         // NUL-terminated, at most 32 characters
    char Addr[48];              // address text, NUL-terminated, at most 47 characters
    std::uint8_t family;        // AAA_NC_FAMILY_..., 0 without an address
    std::uint8_t reserved82[2]; // zero
};

AAA_NC_FIELD(AaaNcServerName, groupName, 0, 33);
AAA_NC_FIELD(AaaNcServerName, Addr, 33, 48);
AAA_NC_FIELD(AaaNcServerName, family, 81, 1);
AAA_NC_FIELD(AaaNcServerName, reserved82, 82, 2);
AAA_NC_RECORD(AaaNcServerName, 84);

// AaaNcServerKey::keyType
enum : std::uint32_t { AAA_NC_KEY_PLAIN = 0, AAA_NC_KEY_CIPHER = 1 };

// The shared key (RFC 2865 section 3, RFC 8907 section 4.5). Each text is empty
// until a key has come under its type; a key that comes later under the other
// type leaves it as it is.
struct AaaNcServerKey {
    char plainKey[128];    // NUL-terminated, at most 127 characters
    std::uint32_t keyType; // AAA_NC_KEY_...
    char cipherKey[260];   // NUL-terminated, at most 259 characters
};

AAA_NC_FIELD(AaaNcServerKey, plainKey, 0, 128);
AAA_NC_FIELD(AaaNcServerKey, keyType, 128, 4);
AAA_NC_FIELD(AaaNcServerKey, cipherKey, 132, 260);
AAA_NC_RECORD(AaaNcServerKey, 392);
