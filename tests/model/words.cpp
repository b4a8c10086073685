#include "words.hpp"

#include <cstdio>

namespace aaanc::test::model
{
namespace
{

using Texts = std::vector<std::string>;

constexpr std::uint32_t kStringType = 18;

std::string letters(Random &random, std::size_t length)
{
    std::string text;
    while (text.size() < length)
        text += static_cast<char>('a' + random.below(26));
    return text;
}

std::string oddCharacters(Random &random)
{
    static const Texts kPieces = {"'",  "\"", "\\", "/", "]",        "[",    "=",
                                  "%s", "%n", "$",  "|", "\xc3\xbc", "\n",   "\t",
                                  "x",  "0",  ".",  "-", "\x7f",     "\xff", ":"};
    std::string text;
    for (std::uint32_t left = random.between(1, 6); left > 0; --left)
        text += random.oneOf(kPieces);
    return text;
}

// A text for a field of `size` characters.
std::string around(Random &random, std::uint32_t size)
{
    const std::vector<std::uint32_t> lengths = {0,        1,        size - 1, size,    size,
                                                size + 1, size + 1, size + 8, 2 * size};
    // Texts that differ behind the cut only.
    static const Texts kEndings = {"", "a", "b"};
    if (random.percent(25))
        return std::string(size, 't') + random.oneOf(kEndings);
    return letters(random, random.oneOf(lengths));
}

std::string name(Random &random, const Texts &usual, std::uint32_t size)
{
    const std::uint32_t kind = random.below(100);
    if (kind < 72)
        return random.oneOf(usual);
    if (kind < 94)
        return around(random, size);
    if (kind < 97)
        return "";
    return oddCharacters(random);
}

std::string groupName(Random &random)
{
    static const Texts kUsual = {"core", "core", "g1", "g2", "backup", "edge-7", "Radius", "x"};
    static const Texts kReserved = {"radius", "tacacs", "a b", " core", "core ", "radius2"};
    if (random.percent(9))
        return random.oneOf(kReserved);
    // A blank on either side of the cut.
    if (random.percent(4))
        return letters(random, random.between(30, 34)) + " z";
    return name(random, kUsual, 32);
}

std::string domainName(Random &random)
{
    static const Texts kUsual = {"abc", "abc",         "d1",      "d1",       "d1",
                                 "d2",  "isp.example", "Default", "default1", "campus"};
    static const Texts kRefused = {"default", "a b", "user@isp", "@isp", "isp@", "@", " ", "a@b@c"};
    if (random.percent(10))
        return random.oneOf(kRefused);
    if (random.percent(3)) {
        // A sign that is refused, on either side of the cut.
        const std::string head = letters(random, random.between(61, 65));
        return head + (random.percent(50) ? "@isp" : " isp");
    }
    if (random.percent(4))
        return letters(random, 70);
    return name(random, kUsual, 63);
}

std::string randomIpv6(Random &random)
{
    static const Texts kHeads = {"2001", "fe80", "febf", "fec0", "feff", "fe7f", "fe00", "fd00",
                                 "ff02", "ff00", "0",    "1",    "64",   "fdff", "ffff"};
    std::string text = random.oneOf(kHeads);
    const std::uint32_t groups = random.between(1, 6);
    for (std::uint32_t i = 0; i < groups; ++i) {
        char group[8];
        std::snprintf(group, sizeof group, ":%x", static_cast<unsigned>(random.below(0x10000)));
        text += group;
    }
    return text + "::" + std::to_string(random.below(10));
}

std::string ipv6Address(Random &random)
{
    static const Texts kUsual = {"2001:db8::1", "2001:db8::2", "fd00::10", "2001:DB8:0:1::ffff"};
    static const Texts kEdges = {"::",
                                 "::1",
                                 "::2",
                                 "::0.0.0.1",
                                 "::0.0.0.2",
                                 "0:0:0:0:0:0:0:0",
                                 "0:0:0:0:0:0:0:1",
                                 "::1:0",
                                 "::1:0:0:0",
                                 "::100",
                                 "::1:0001",
                                 "::ffff:10.0.0.1",
                                 "::10.0.0.1",
                                 "fe80::1",
                                 "febf::1",
                                 "fec0::1",
                                 "fe7f::1",
                                 "fe00::1",
                                 "ff02::1",
                                 "ff00::",
                                 "feff::",
                                 "fd00::",
                                 "1::",
                                 "10.0.0.1",
                                 "",
                                 "fe80::1%eth0",
                                 "2001:db8::g",
                                 "2001:db8:::1",
                                 " 2001:db8::1",
                                 "2001:db8::1 ",
                                 "1:2:3:4:5:6:7",
                                 "1:2:3:4:5:6:7:8:9",
                                 "[2001:db8::1]",
                                 "2001:db8::1/64",
                                 "0000:0000:0000:0000:0000:ffff:255.255.255.255"};
    const std::uint32_t kind = random.below(100);
    if (kind < 56)
        return random.oneOf(kUsual);
    if (kind < 84)
        return random.oneOf(kEdges);
    if (kind < 94)
        return randomIpv6(random);
    return around(random, 47);
}

std::string ipv4Address(Random &random)
{
    static const Texts kUsual = {"192.0.2.1", "192.0.2.2", "10.0.0.1", "0.0.0.0",
                                 "255.255.255.255"};
    static const Texts kRefusedOverIpv6 = {"::1", "fe80::1", "ff02::1"};
    if (random.percent(5))
        return random.oneOf(kRefusedOverIpv6);
    return random.percent(5) ? ipv6Address(random) : name(random, kUsual, 47);
}

std::string keyType(Random &random)
{
    static const Texts kOdd = {"", "00", "0 ", "0x", "plain", "cipher", "01", " 0"};
    const std::uint32_t kind = random.below(100);
    return kind < 50 ? "0" : kind < 70 ? "1" : kind < 85 ? "8" : random.oneOf(kOdd);
}

std::string hexDigits(Random &random, std::uint32_t bytes, bool zeros)
{
    constexpr const char *kDigits = "0123456789abcdefABCDEF";
    std::string text;
    for (std::uint32_t i = 0; i < bytes; ++i) {
        text += zeros && random.percent(5) ? '0' : kDigits[random.between(1, 21)];
        text += text.back() == '0' ? '0' : kDigits[random.below(22)];
    }
    return text;
}

std::string key(Random &random)
{
    static const std::vector<std::uint32_t> kUsual = {1, 3, 6, 8, 16, 32};
    static const std::vector<std::uint32_t> kEdges = {0,   1,   126, 127, 127, 128, 129,
                                                      200, 257, 258, 259, 260, 300};
    static const Texts kNotHex = {"secret", "0", "abc", "0x41", "41 42", "4g", " 41", "41\n"};
    const std::uint32_t kind = random.below(100);
    if (kind < 70)
        return hexDigits(random, random.oneOf(kUsual), false);
    if (kind < 92)
        return hexDigits(random, random.oneOf(kEdges), false);
    if (kind < 96)
        return hexDigits(random, random.between(1, 259), true);
    return random.oneOf(kNotHex);
}

std::string word(Random &random, const Texts &known, const Texts &unknown)
{
    return random.oneOf(random.percent(92) ? known : unknown);
}

std::string serverType(Random &random)
{
    static const Texts kUnknown = {"local", "", "Radius", "radius ", "tacacs+", "ldap"};
    return random.percent(2) ? around(random, 32) : word(random, {"radius", "tacacs"}, kUnknown);
}

std::string textOf(Random &random, Content content)
{
    switch (content) {
    case Content::InterfaceName:
        return name(random, {"vlan10", "vlan20", "loopback0", "eth1/0/1"}, 39);
    case Content::VrfName:
        return name(random, {"mgmt", "global", "blue", "red vrf"}, 32);
    case Content::DomainName:
        return domainName(random);
    case Content::Ipv4Address:
        return ipv4Address(random);
    case Content::Ipv6Address:
        return ipv6Address(random);
    case Content::GroupName:
        return groupName(random);
    case Content::MethodGroupName:
        return name(random, {"g1", "g1", "g2", "g3", "g4", "g5", "core"}, 32);
    case Content::ServerType:
        return serverType(random);
    case Content::GroupWord:
        return word(random, {"radius-group", "tacacs-group"},
                    {"local", "", "none", "radius", "radius-groups"});
    case Content::Protocol:
        return word(random, {"dot1x", "dot1x", "default"}, {"", "Dot1x", "ppp", "dot1"});
    case Content::Stage:
        return word(random, {"none", "start-stop", "stop-only", "wait-start"},
                    {"", "None", "start", "start-stop "});
    case Content::KeyType:
        return keyType(random);
    default:
        return key(random);
    }
}

std::uint32_t numberOf(Random &random, const std::vector<std::uint32_t> &edges)
{
    return random.percent(70) ? random.oneOf(edges) : random.word();
}

Value number(std::uint32_t type, std::uint32_t mask, std::uint32_t number)
{
    Value value;
    value.type = type;
    value.data = number & mask;
    return value;
}

} // namespace

Value randomValue(Random &random, Content content)
{
    Value value;
    switch (content) {
    case Content::Container:
        value.type = 3;
        return value;
    case Content::StartFail: {
        const std::uint32_t type = random.percent(50) ? 9 : 19;
        return number(type, type == 9 ? 1 : 0xff, numberOf(random, {0, 1, 1, 2, 127, 128, 255}));
    }
    case Content::Interval:
        return number(21, 0xffffffff,
                      numberOf(random, {0, 1, 15, 3600, 0x7fffffff, 0x80000000, 0xffffffff}));
    case Content::Port:
        return number(20, 0xffff,
                      numberOf(random, {0, 1, 49, 1812, 1812, 1813, 1813, 32768, 65535}));
    case Content::Priority:
        return number(19, 0xff, numberOf(random, {0, 1, 1, 2, 128, 255}));
    default:
        value.type = kStringType;
        if (random.percent(2))
            value.data = NullString{};
        else
            value.data = textOf(random, content);
        return value;
    }
}

std::string keyText(const Value &value)
{
    if (const auto *text = std::get_if<std::string>(&value.data))
        return *text;
    if (const auto *number = std::get_if<std::uint32_t>(&value.data))
        return std::to_string(*number);
    return "";
}

std::string oddPortText(Random &random)
{
    static const Texts kTexts = {"",
                                 "0",
                                 "-1",
                                 "+1812",
                                 " 1812",
                                 "\t7",
                                 "1812 ",
                                 "12ab",
                                 "port",
                                 "65536",
                                 "007",
                                 "0x10",
                                 "2147483647",
                                 "2147483648",
                                 "-2147483648",
                                 "-2147483649",
                                 "4294967295",
                                 "4294967296",
                                 "4294969108",
                                 "9223372036854775807",
                                 "99999999999999999999",
                                 "-99999999999999999999",
                                 "1.5",
                                 "--1"};
    return random.oneOf(kTexts);
}

} // namespace aaanc::test::model
