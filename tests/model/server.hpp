// What RADIUS and TACACS servers have in common.
#pragma once

#include "world.hpp"

#include <cstdint>
#include <string>

namespace aaanc::test::model
{

inline constexpr std::size_t kGroupNameSize = 32;
inline constexpr std::size_t kAddressSize = 47;

// What tells the IPv4 from the IPv6 list.
struct Version {
    std::string leaf_prefix; // "radiusIpv4"
    std::uint8_t family;
    bool checks_address;
    bool maps_final_refusal; // else every refusal of the last send is 7
};

// Ends the walk with 1 unless the text is an IPv6 address that a server can have.
void addressOrEnd(World &world, const std::string &address);

struct SharedKey {
    std::uint32_t type = 0;
    std::string plain;
    std::string cipher;
};

std::uint32_t keyTypeOf(const std::string &text);

// The key leaf's text decoded; ends the walk with 7 when it cannot be.
std::string decodedOrEnd(World &world, const Leaf &leaf);

// Stores the decoded text by the key's type; ends the walk with 7 when it is too
// long. `function` is the one to log that under.
void fileOrEnd(World &world, const std::string &function, SharedKey &key, const std::string &text);

} // namespace aaanc::test::model
