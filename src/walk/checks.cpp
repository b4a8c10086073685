#include "walk/checks.hpp"

#include <arpa/inet.h>

#include <cstring>

enum { kGroupNameMissing = 25, kGroupNameTaken = 46 };

int aaaNcGroupNameCheck(const char *name, const AaaNcGroup *records, std::uint32_t count,
                        std::uint32_t type)
{
    if (name == nullptr) {
        return kGroupNameMissing;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        if (records[i].groupType == type && std::strcmp(records[i].groupName, name) == 0) {
            return kGroupNameTaken;
        }
    }
    return 0;
}

int aaaNcServerIpCheck(const char *address)
{
    unsigned char bytes[16];
    if (inet_pton(AF_INET6, address, bytes) != 1) {
        return 0;
    }
    static const unsigned char zero[15] = {};
    if (std::memcmp(bytes, zero, sizeof(zero)) == 0 && bytes[15] <= 1) {
        return 0; // unspecified or loopback
    }
    if (bytes[0] == 0xFE) {
        return (bytes[1] & 0x80) == 0; // not link-local, nor site-local of old
    }
    return bytes[0] != 0xFF; // not multicast
}
