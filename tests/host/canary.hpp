// A shared key that must not be seen.
#pragma once

#include <string>

#include <gtest/gtest.h>

namespace aaanc::test
{

inline constexpr const char *kOneServer = R"({"orvek-aaa:sysAaa": {
  "radiusIpv4Server": {"radiusIpv4ServerInfo": [{"radiusIpv4GroupName": "core",
    "radiusIpv4ServerAddr": "192.0.2.1", "radiusIpv4ServerAuthenPort": 1812,
    "radiusIpv4ServerAccountPort": 1813, "radiusIpv4ServerKeyType": "0",
    "radiusIpv4ServerKey": "63616e617279"}]}}})"; // "canary"

// No form of the key "canary" is in a text.
inline void expectNoCanary(const std::string &text)
{
    for (const std::string form : {"canary", "63616e617279", "63 61 6e 61 72 79"}) {
        EXPECT_EQ(text.find(form), std::string::npos) << text;
    }
}

} // namespace aaanc::test
