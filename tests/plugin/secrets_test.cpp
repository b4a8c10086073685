// Plays shared keys through every callback, at every log level, in every way
// that a key can go, and searches all that was logged for them.
#include "harness/fake_platform.hpp"

#include <gtest/gtest.h>

namespace aaanc::test
{

namespace
{

constexpr const char *kCanary = "canary-in-the-shaft";
constexpr const char *kCanaryHex = "63616e6172792d696e2d7468652d7368616674";

struct ServerList {
    std::size_t row; // of the subscription
    std::string prefix;
    std::string keys; // list keys, as predicates
};

const std::vector<ServerList> kServerLists = {
    {5, "radiusIpv4",
     "[radiusIpv4GroupName='core'][radiusIpv4ServerAddr='192.0.2.1']"
     "[radiusIpv4ServerAuthenPort='1812'][radiusIpv4ServerAccountPort='1813']"},
    {6, "radiusIpv6",
     "[radiusIpv6GroupName='core'][radiusIpv6ServerAddr='2001:db8::1']"
     "[radiusIpv6ServerAuthenPort='1812'][radiusIpv6ServerAccountPort='1813']"},
    {7, "tacacsIpv4",
     "[tacacsIpv4GroupName='tac'][tacacsIpv4ServerAddr='192.0.2.1'][tacacsIpv4ServerPort='49']"},
    {8, "tacacsIpv6",
     "[tacacsIpv6GroupName='tac'][tacacsIpv6ServerAddr='2001:db8::1'][tacacsIpv6ServerPort='49']"},
};

Scenario scenarioOf(std::size_t row)
{
    Scenario scenario;
    scenario.callback = kSubscriptions[row].callback;
    scenario.xpath = kSubscriptions[row].xpath;
    return scenario;
}

Change leafChange(std::uint32_t oper, const std::string &xpath, std::uint32_t type,
                  const Data &data)
{
    const Value value{xpath, type, data};
    return oper == 2 ? Change{oper, value, std::nullopt} : Change{oper, std::nullopt, value};
}

// All leaves of a server. An empty key type is none; the key comes first or last.
std::vector<Change> serverChanges(const ServerList &list, std::uint32_t oper,
                                  const std::string &key_type, const std::string &key,
                                  bool key_first)
{
    const std::string leaf =
        std::string(kSubscriptions[list.row].xpath) + list.keys + '/' + list.prefix;
    const Change key_change = leafChange(oper, leaf + "ServerKey", 18, key);
    std::vector<Change> changes;
    if (key_first)
        changes.push_back(key_change);
    if (!key_type.empty())
        changes.push_back(leafChange(oper, leaf + "ServerKeyType", 18, key_type));
    changes.push_back(leafChange(oper, leaf + "GroupName", 18, std::string("core")));
    changes.push_back(leafChange(oper, leaf + "ServerAddr", 18, std::string("2001:db8::1")));
    changes.push_back(leafChange(oper, leaf + "ServerPort", 20, 49U));
    changes.push_back(leafChange(oper, leaf + "ServerPriority", 19, 1U));
    if (!key_first)
        changes.push_back(key_change);
    return changes;
}

struct Found {
    bool sent = false; // a request carried the key
};

// Plays the scenario at every log level; no log line may hold a part of the key.
Found playAtEveryLevel(Scenario scenario)
{
    Found found;
    for (int level = 0; level <= 5; ++level) {
        scenario.log_level = level;
        for (const std::string &line : play(scenario)) {
            if (line.starts_with("log ")) {
                EXPECT_EQ(line.find("canary"), std::string::npos) << line;
                EXPECT_EQ(line.find("63616e6172"), std::string::npos) << line;
            }
            if (line.starts_with("cmf-encode "))
                found.sent = found.sent || line.find(kCanaryHex) != std::string::npos;
        }
    }
    return found;
}

std::string repeated(const std::string &text, std::size_t times)
{
    std::string all;
    for (; times > 0; --times)
        all += text;
    return all;
}

TEST(Secrets, AreNotLoggedWhateverBecomesOfThem)
{
    for (const ServerList &list : kServerLists) {
        SCOPED_TRACE(list.prefix);
        bool sent = false;
        for (const std::uint32_t oper : {0U, 1U, 2U})
            for (const char *key_type : {"", "0", "1"})
                for (const bool key_first : {true, false})
                    for (const std::uint32_t answer : {0U, 43U}) {
                        Scenario scenario = scenarioOf(list.row);
                        scenario.changes =
                            serverChanges(list, oper, key_type, kCanaryHex, key_first);
                        scenario.exchanges[1].reply.result = answer;
                        sent = playAtEveryLevel(scenario).sent || sent;
                    }
        EXPECT_TRUE(sent) << "no request has carried the key: nothing was tried";
    }
}

TEST(Secrets, AreNotLoggedWhenTheyAreRefused)
{
    const std::string not_hexadecimal = kCanary;
    for (const ServerList &list : kServerLists) {
        SCOPED_TRACE(list.prefix);
        for (const std::string &key :
             {not_hexadecimal, repeated(kCanaryHex, 7), repeated(kCanaryHex, 20)})
            for (const char *key_type : {"", "0", "1"}) {
                Scenario scenario = scenarioOf(list.row);
                scenario.changes = serverChanges(list, 0, key_type, key, false);
                playAtEveryLevel(scenario);
            }
    }
}

TEST(Secrets, AreNotLoggedByCallbacksThatKnowNoKeys)
{
    for (std::size_t row = 0; row < kSubscriptions.size(); ++row)
        for (const ServerList &list : kServerLists) {
            Scenario scenario = scenarioOf(row);
            const std::string xpath = kSubscriptions[row].xpath +
                                      std::string("[serverGroupType='radius']"
                                                  "[serverGroupName='core'][domainName='corp']") +
                                      list.keys + '/' + list.prefix + "ServerKey";
            scenario.changes = {leafChange(0, xpath, 18, std::string(kCanaryHex)),
                                leafChange(2, xpath, 18, std::string(kCanary))};
            playAtEveryLevel(scenario);
        }
}

} // namespace

} // namespace aaanc::test
