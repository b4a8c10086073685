// The shared checks over their whole input, as far as it has classes, against
// oracles written another way.
#include "exhaustive/service.hpp"

#include "walk/checks.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace aaanc::test
{

namespace
{

using Address = std::array<std::uint16_t, 8>;

// In full, as RFC 4291 section 2.2 form 1 has it.
std::string text(const Address &address)
{
    char written[40];
    std::snprintf(written, sizeof written, "%x:%x:%x:%x:%x:%x:%x:%x", address[0], address[1],
                  address[2], address[3], address[4], address[5], address[6], address[7]);
    return written;
}

// Addresses that no server can have.
struct Prefix {
    Address address;
    int length;
};

constexpr std::array<Prefix, 4> kRefused = {{
    {{}, 128},
    {{0, 0, 0, 0, 0, 0, 0, 1}, 128},
    {{0xfe80}, 9},
    {{0xff00}, 8},
}};

bool bitOf(const Address &address, int bit)
{
    return (address[static_cast<std::size_t>(bit / 16)] >> (15 - bit % 16) & 1) != 0;
}

bool isIn(const Address &address, const Prefix &prefix)
{
    for (int bit = 0; bit < prefix.length; ++bit) {
        if (bitOf(address, bit) != bitOf(prefix.address, bit))
            return false;
    }
    return true;
}

int acceptable(const Address &address)
{
    return std::none_of(kRefused.begin(), kRefused.end(),
                        [&](const Prefix &prefix) { return isIn(address, prefix); })
               ? 1
               : 0;
}

// Counts instead of asserting for each: there are too many.
class Mismatches
{
public:
    void compare(const Address &address)
    {
        ++compared_;
        if (call(aaaNcServerIpCheck, text(address).c_str()) != acceptable(address) &&
            mismatches_++ == 0)
            first_ = text(address);
    }
    ~Mismatches()
    {
        EXPECT_EQ(mismatches_, 0U) << "the first: " << first_;
        testing::Test::RecordProperty("inputs", compared_);
    }

private:
    int compared_ = 0;
    std::size_t mismatches_ = 0;
    std::string first_;
};

} // namespace

TEST(ServerIpCheck, AllFirstTwoBytes)
{
    constexpr std::array<std::array<std::uint16_t, 7>, 5> kRests = {{
        {},
        {0, 0, 0, 0, 0, 0, 1},
        {0, 0, 0, 0, 0, 0, 2},
        {0xdb8, 0, 0, 0, 0, 0, 1},
        {0xffff, 0xffff, 0xffff, 0xffff, 0xffff, 0xffff, 0xffff},
    }};
    Mismatches mismatches;
    for (unsigned first = 0; first <= 0xffff; ++first) {
        for (const auto &rest : kRests) {
            Address address = {static_cast<std::uint16_t>(first)};
            std::copy(rest.begin(), rest.end(), address.begin() + 1);
            mismatches.compare(address);
        }
    }
}

// Each half of the last word over all its values, the other at its ends.
TEST(ServerIpCheck, LastWordBehindZeros)
{
    constexpr std::array<std::uint16_t, 5> kOthers = {0x0000, 0x0001, 0x0100, 0x8000, 0xffff};
    Mismatches mismatches;
    for (unsigned half = 0; half <= 0xffff; ++half) {
        const auto value = static_cast<std::uint16_t>(half);
        for (const std::uint16_t other : kOthers) {
            mismatches.compare({0, 0, 0, 0, 0, 0, other, value});
            mismatches.compare({0, 0, 0, 0, 0, 0, value, other});
        }
    }
}

// One bit before a last word of 0, 1 or 2: none of these is unspecified or loopback.
TEST(ServerIpCheck, EveryBitBeforeTheLastWord)
{
    Mismatches mismatches;
    for (std::size_t bit = 0; bit < 96; ++bit) {
        for (std::uint16_t last = 0; last <= 2; ++last) {
            Address address{};
            address[bit / 16] = static_cast<std::uint16_t>(0x8000U >> bit % 16);
            address[7] = last;
            mismatches.compare(address);
        }
    }
}

TEST(ServerIpCheck, TextForms)
{
    const std::vector<std::pair<const char *, int>> forms = {
        {"::", 0},
        {"::0", 0},
        {"0::0", 0},
        {"::1", 0},
        {"0:0:0:0:0:0:0:1", 0},
        {"0000:0000:0000:0000:0000:0000:0000:0001", 0},
        {"::0.0.0.0", 0},
        {"::0.0.0.1", 0},
        {"::2", 1},
        {"::0.0.0.2", 1},
        {"::10.0.0.1", 1},
        {"::1.0.0.0", 1},
        {"::ffff:10.0.0.1", 1},
        {"::ffff:0.0.0.1", 1},
        {"1::", 1},
        {"2001:db8::1", 1},
        {"2001:DB8::A", 1},
        {"fe7f::1", 1},
        {"fe80::1", 0},
        {"FE80::1", 0},
        {"febf::1", 0},
        {"fec0::1", 0},
        {"feff:ffff:ffff:ffff:ffff:ffff:ffff:ffff", 0},
        {"ff02::1", 0},
        {"FF02::1", 0},
        {"fd00::1", 1},
        // No IPv6 addresses.
        {"", 0},
        {" ", 0},
        {":", 0},
        {":::", 0},
        {"1", 0},
        {"10.0.0.1", 0},
        {"fe80::1%eth0", 0},
        {"[2001:db8::1]", 0},
        {"2001:db8::1/64", 0},
        {" 2001:db8::1", 0},
        {"2001:db8::1 ", 0},
        {"2001:db8::1::2", 0},
        {"2001:db8::g", 0},
        {"2001:db8::10000", 0},
        {"1:2:3:4:5:6:7", 0},
        {"1:2:3:4:5:6:7:8:9", 0},
        {"1:2:3:4:5:6:7:1.2.3.4", 0},
        {"::256.0.0.1", 0},
        {"::1.2.3", 0},
    };
    for (const auto &[form, result] : forms)
        EXPECT_EQ(call(aaaNcServerIpCheck, form), result) << '"' << form << '"';
    RecordProperty("inputs", static_cast<int>(forms.size()));
}

namespace
{

using Group = std::pair<std::string, std::uint32_t>; // name, type

AaaNcGroup record(const Group &group)
{
    AaaNcGroup made{};
    made.groupType = group.second;
    group.first.copy(made.groupName, sizeof made.groupName - 1);
    return made;
}

const std::vector<Group> &groups()
{
    static const std::vector<Group> all = [] {
        std::vector<Group> made;
        for (const char *name : {"", "a", "A", "ab", "abcdefghijklmnopqrstuvwxyz0123456"}) {
            for (const std::uint32_t type : {0U, 1U, 2U})
                made.emplace_back(name, type);
        }
        return made;
    }();
    return all;
}

// Asks for every group, and for no name, in the first `count` of `array`, and
// counts the questions.
void askForEach(const std::vector<Group> &array, int &asks)
{
    std::array<AaaNcGroup, 4> records{};
    std::transform(array.begin(), array.end(), records.begin(), record);
    for (std::uint32_t count = 0; count <= array.size(); ++count) {
        const auto end = array.begin() + static_cast<std::ptrdiff_t>(count);
        for (const Group &asked : groups()) {
            ++asks;
            const int expected = std::find(array.begin(), end, asked) != end ? 46 : 0;
            ASSERT_EQ(
                call(aaaNcGroupNameCheck, asked.first.c_str(), records.data(), count, asked.second),
                expected)
                << '"' << asked.first << "\" of type " << asked.second << " among " << count;
        }
        ++asks;
        ASSERT_EQ(call(aaaNcGroupNameCheck, nullptr, records.data(), count, 0), 25);
    }
}

// Every array that begins with `array` and has up to `size` groups.
void forEachArray(std::vector<Group> &array, std::size_t size, int &asks)
{
    askForEach(array, asks);
    if (array.size() == size || testing::Test::HasFatalFailure())
        return;
    for (const Group &group : groups()) {
        array.push_back(group);
        forEachArray(array, size, asks);
        array.pop_back();
    }
}

} // namespace

TEST(GroupNameCheck, AllSmallArrays)
{
    std::vector<Group> array;
    int asks = 0;
    forEachArray(array, 4, asks);
    RecordProperty("inputs", asks);
}

} // namespace aaanc::test
