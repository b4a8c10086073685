// The platform's functions that are plain calculations.
#include <array>
#include <cstring>

#include <gtest/gtest.h>

#include "gnl.h"
#include "sysrepo.h"

namespace aaanc::test
{

namespace
{

std::string decoded(const char *text, int size = 259)
{
    std::array<char, 260> out{};
    out.fill('?');
    const int code = sr_convert_hexstring_to_string(text, size, out.data());
    if (code != 0) {
        EXPECT_EQ(out[0], '?');
        return "(refused)";
    }
    EXPECT_EQ(out[static_cast<std::size_t>(size)], '?');
    return {out.data(), strnlen(out.data(), static_cast<std::size_t>(size))};
}

TEST(HexString, IsDecoded)
{
    EXPECT_EQ(decoded("6c6162"), "lab");
    EXPECT_EQ(decoded("6C6d"), "lm");
    EXPECT_EQ(decoded(""), "");
    EXPECT_EQ(decoded("6162", 2), "ab"); // filled, without a terminator
    EXPECT_EQ(decoded("61", 2), "a");
}

TEST(HexString, IsRefusedWhenItIsNone)
{
    EXPECT_EQ(decoded("6c616"), "(refused)");
    EXPECT_EQ(decoded("6g"), "(refused)");
    EXPECT_EQ(decoded("0x61"), "(refused)");
    EXPECT_EQ(decoded("61 62"), "(refused)");
    EXPECT_EQ(decoded("+1"), "(refused)");
    EXPECT_EQ(decoded("616263", 2), "(refused)");
}

TEST(Strlcpy, CutsAndTerminatesAndLeavesTheRest)
{
    char out[] = "xxxxxxx";
    EXPECT_EQ(gnl_strlcpy(out, "abc", sizeof out), 3U);
    EXPECT_EQ(std::memcmp(out, "abc\0xxx", sizeof out), 0);
    EXPECT_EQ(gnl_strlcpy(out, "defghi", 4), 6U);
    EXPECT_EQ(std::memcmp(out, "def\0xxx", sizeof out), 0);
    EXPECT_EQ(gnl_strlcpy(out, "z", 0), 1U);
    EXPECT_EQ(out[0], 'd');
}

TEST(Strerror, HasATextForEveryCode)
{
    EXPECT_STREQ(sr_strerror(0), "Operation succeeded");
    EXPECT_STREQ(sr_strerror(3), "Item not found");
    EXPECT_STREQ(sr_strerror(4), "Sysrepo-internal error");
    EXPECT_STREQ(sr_strerror(7), "The peer disconnected");
    EXPECT_STREQ(sr_strerror(13), "The operation failed");
    EXPECT_STREQ(sr_strerror(19), "Timeout has expired");
    EXPECT_STREQ(sr_strerror(-1), "Unknown error");
    EXPECT_STREQ(sr_strerror(22), "Unknown error");
}

} // namespace

} // namespace aaanc::test
