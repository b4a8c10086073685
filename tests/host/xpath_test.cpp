#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "sysrepo.h"
#include "xpath.hpp"

namespace aaanc::test
{

namespace
{

constexpr const char *kEntry =
    "/orvek-aaa:sysAaa/radiusIpv4Server/radiusIpv4ServerInfo[radiusIpv4GroupName='core']"
    "[radiusIpv4ServerAddr='192.0.2.1'][radiusIpv4ServerAuthenPort='1812']"
    "[radiusIpv4ServerAccountPort='1813']";

// An xpath as values have it: two NULs end it.
std::string buffer(const std::string &xpath)
{
    return xpath + std::string(2, '\0');
}

std::string key(std::string &xpath, const char *node, const char *name)
{
    sr_xpath_ctx_t state{};
    const char *value = sr_xpath_key_value(xpath.data(), node, name, &state);
    return value != nullptr ? value : "(none)";
}

std::string nodeName(const char *xpath)
{
    const char *name = sr_xpath_node_name(xpath);
    return name != nullptr ? name : "(none)";
}

TEST(NodeName, IsTheLastNode)
{
    EXPECT_EQ(nodeName("/orvek-aaa:sysAaa/aaaGlobal/accountInterval"), "accountInterval");
    EXPECT_EQ(nodeName("/m:a/list[k='v']"), "list[k='v']");
    EXPECT_EQ(nodeName("/m:a/list[k='a/b']/leaf"), "leaf");
    EXPECT_EQ(nodeName("/m:a/list[k=\"a'/b\"]"), "list[k=\"a'/b\"]");
    EXPECT_EQ(nodeName("/orvek-aaa:sysAaa"), "(none)");
    EXPECT_EQ(nodeName(""), "(none)");
    const char *xpath = "/m:a/b";
    EXPECT_EQ(sr_xpath_node_name(xpath), xpath + 5);
}

TEST(KeyValue, CutsTheXpathBehindTheKey)
{
    std::string xpath = buffer("/m:a/list[k='v']/leaf");
    EXPECT_EQ(key(xpath, "list", "k"), "v");
    EXPECT_STREQ(xpath.c_str(), "/m:a/list[k='v");
}

TEST(KeyValue, FindsAllKeysInAnyOrder)
{
    std::vector<std::pair<std::string, std::string>> keys = {
        {"radiusIpv4GroupName", "core"},
        {"radiusIpv4ServerAccountPort", "1813"},
        {"radiusIpv4ServerAddr", "192.0.2.1"},
        {"radiusIpv4ServerAuthenPort", "1812"},
    };
    for (const std::string leaf : {"", "/radiusIpv4ServerPriority"}) {
        do {
            std::string xpath = buffer(kEntry + leaf);
            for (const auto &[name, value] : keys) {
                EXPECT_EQ(key(xpath, "radiusIpv4ServerInfo", name.c_str()), value);
            }
            for (const auto &[name, value] : keys) { // and again, in the cut text
                EXPECT_EQ(key(xpath, "radiusIpv4ServerInfo", name.c_str()), value);
            }
        } while (std::ranges::next_permutation(keys).found);
    }
}

TEST(KeyValue, LeavesTheXpathWholeWhereThereIsNoSuchKey)
{
    std::string xpath = buffer(kEntry);
    const std::string before = xpath;
    EXPECT_EQ(key(xpath, "radiusIpv4ServerInfo", "radiusIpv4"), "(none)");
    EXPECT_EQ(key(xpath, "radiusIpv4Server", "radiusIpv4GroupName"), "(none)");
    EXPECT_EQ(key(xpath, "none", "radiusIpv4GroupName"), "(none)");
    EXPECT_EQ(xpath, before);
}

TEST(KeyValue, ReadsQuotedTextWhole)
{
    std::string xpath = buffer("/m:a/list[k=\"o'brien/]['\"][j='']/leaf");
    EXPECT_EQ(key(xpath, "list", "j"), "");
    EXPECT_EQ(key(xpath, "list", "k"), "o'brien/]['");
    EXPECT_EQ(key(xpath, "list", "j"), "");
}

TEST(KeyValue, TellsNodesOfOneKeyNameApart)
{
    std::string xpath = buffer("/m:a/m:outer[name='1']/inner[name='2']/leaf");
    EXPECT_EQ(key(xpath, "inner", "name"), "2");
    EXPECT_EQ(key(xpath, "outer", "name"), "1");
}

TEST(KeyValue, SurvivesWhatIsNoXpath)
{
    for (const char *text :
         {"", "/", "a", "/m:a[", "/m:a[k", "/m:a[k=", "/m:a[k='", "/m:a[k='v", "[[["}) {
        std::string xpath = buffer(text);
        key(xpath, "a", "none");
        EXPECT_EQ(xpath.size(), std::string(text).size() + 2);
    }
}

TEST(AtOrBelow, LooksAtNodesAndNotAtPredicates)
{
    EXPECT_TRUE(isAtOrBelow(kEntry, "/orvek-aaa:sysAaa/radiusIpv4Server/radiusIpv4ServerInfo"));
    EXPECT_TRUE(isAtOrBelow(kEntry, "/orvek-aaa:sysAaa/radiusIpv4Server"));
    EXPECT_FALSE(isAtOrBelow(kEntry, "/orvek-aaa:sysAaa/radiusIpv4ServerInfo"));
    for (const char *path : {"/m:a", "/m:a/l", "/m:a/l/b"}) {
        EXPECT_TRUE(isAtOrBelow("/m:a/l[k=\"']\"]/b", path)) << path;
    }
    for (const char *path : {"/m:a/", "/m:a/l/", "/m:a/l/b/c", "/m:a/l/bc", "/m", "/m:a/k"}) {
        EXPECT_FALSE(isAtOrBelow("/m:a/l[k=\"']\"]/b", path)) << path;
    }
}

} // namespace

} // namespace aaanc::test
