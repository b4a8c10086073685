#include "server.hpp"

#include "text.hpp"

#include <arpa/inet.h>

#include <array>

namespace aaanc::test::model
{
namespace
{

constexpr std::size_t kPlainKeySize = 127;
constexpr std::size_t kCipherKeySize = 259;

bool acceptableIpv6(const std::string &text)
{
    std::array<unsigned char, 16> address{};
    if (inet_pton(AF_INET6, text.c_str(), address.data()) != 1)
        return false;
    const std::array<unsigned char, 16> unspecified{};
    auto loopback = unspecified;
    loopback.back() = 1;
    if (address == unspecified || address == loopback)
        return false;
    if (address[0] == 0xfe)
        return address[1] < 0x80;
    return address[0] != 0xff;
}

} // namespace

void addressOrEnd(World &world, const std::string &address)
{
    const bool acceptable = acceptableIpv6(address);
    world.facts().addresses_checked.emplace_back(address, acceptable);
    if (!acceptable)
        throw End{1};
}

std::uint32_t keyTypeOf(const std::string &text)
{
    return text == "0" ? 0 : 1;
}

std::string decodedOrEnd(World &world, const Leaf &leaf)
{
    const auto decoded = world.unhex(leaf.text());
    if (!decoded)
        throw End{7};
    return untilNul(*decoded);
}

// A cipher key cannot be too long: no more than 259 bytes are ever decoded.
void fileOrEnd(World &world, const std::string &function, SharedKey &key, const std::string &text)
{
    if (key.type != 0) {
        key.cipher = cut(text, kCipherKeySize);
        return;
    }
    if (text.size() > kPlainKeySize) {
        world.error(function, "Aaa netconf client input plain key length[" +
                                  std::to_string(text.size()) + "] is too long.");
        throw End{7};
    }
    key.plain = text;
}

} // namespace aaanc::test::model
