// What RADIUS and TACACS servers share: their address, and their shared key.
#pragma once

#include "aaa_nc/server.hpp"
#include "walk/gather.hpp"

// A walk that gathers a server.
struct AaaNcServerWalk : AaaNcGather {
    std::uint8_t family; // of the list's addresses

    AaaNcServerWalk(const AaaNcHandler &theHandler, void *theRecord, std::uint8_t theFamily)
        : AaaNcGather(theHandler, theRecord), family(theFamily)
    {
    }
};

// Whether the address is one that no server can have. Only IPv6 addresses are
// looked at; IPv4 ones go to the service as they are, on purpose.
bool aaaNcServerAddrIsBad(const AaaNcServerName &name);

// Ways to store a value. The leaf's field is an AaaNcServerName, of its address ...
int aaaNcServerAddrStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value);
// ... or an AaaNcServerKey. A key is hexadecimal text, whatever its type, and is
// filed by the key type that stands in the record when it arrives; a key type
// that comes later does not move it. A key that cannot be decoded, or that is
// too long (logged), ends the walk with 7.
int aaaNcServerKeyTypeStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value);
int aaaNcServerKeyStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value);

inline constexpr AaaNcStore AAA_NC_AS_ADDR = {aaaNcServerAddrStore, sizeof(AaaNcServerName)};
inline constexpr AaaNcStore AAA_NC_AS_KEY_TYPE = {aaaNcServerKeyTypeStore, sizeof(AaaNcServerKey)};
inline constexpr AaaNcStore AAA_NC_AS_KEY = {aaaNcServerKeyStore, sizeof(AaaNcServerKey)};
