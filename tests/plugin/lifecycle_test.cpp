// The two entry points: what the initialisation subscribes, registers, logs and
// hands back, whichever step fails, and what the cleanup ends.
#include "harness/device.hpp"
#include "harness/fake_platform.hpp"

#include <gtest/gtest.h>

namespace aaanc::test
{

namespace
{

constexpr int kDebugLevel = 4;
constexpr std::int32_t kSomeCode = 13;
constexpr std::size_t kLastRow = kSubscriptions.size();

const std::string kStartLine =
    "log DBG sr_plugin_init_cb \"AAA Module orvek-aaa subscribe sub tree /orvek-aaa:sysAaa.\"";

std::string subscribeLine(std::size_t row, std::int32_t code)
{
    const Subscription &wanted = kSubscriptions[row - 1];
    return "subscribe \"" + std::string(wanted.xpath) + "\" callback#" + std::to_string(row) +
           " private null priority 0 opts " + std::to_string(wanted.opts) + " into " +
           (row == 1 ? "null" : "context") + " -> " + std::to_string(code);
}

std::string registerLine(std::int32_t code)
{
    return "register \"aaa\" 7fff0091 7ffe0002 private context -> " + std::to_string(code);
}

Trace allSubscribed(int log_level)
{
    Trace trace;
    if (log_level >= kDebugLevel)
        trace.push_back(kStartLine);
    for (std::size_t row = 1; row <= kLastRow; ++row)
        trace.push_back(subscribeLine(row, 0));
    return trace;
}

// The trace of an initialisation whose subscription `row` fails.
Trace failedAt(std::size_t row, std::int32_t code, int log_level)
{
    Trace trace;
    if (log_level >= kDebugLevel)
        trace.push_back(kStartLine);
    for (std::size_t made = 1; made < row; ++made)
        trace.push_back(subscribeLine(made, 0));
    trace.push_back(subscribeLine(row, code));
    if (log_level != 0) {
        // A failure of the last row names the row before it.
        const std::string xpath = kSubscriptions[std::min(row, kLastRow - 1) - 1].xpath;
        trace.push_back("strerror " + std::to_string(code));
        trace.push_back(
            "log ERR sr_plugin_init_cb \"Module orvek-aaa subscribe change for subtree " + xpath +
            " failed : " + errorText(code) + ".\"");
    }
    if (log_level >= kDebugLevel) {
        trace.push_back("strerror " + std::to_string(code));
        trace.push_back("log DBG sr_plugin_init_cb \"AAA Module 'orvek-aaa' plugin initialization "
                        "failed : " +
                        errorText(code) + "\\x0a.\"");
    }
    trace.push_back("private untouched");
    trace.push_back("result " + std::to_string(code));
    return trace;
}

class AtLevel : public testing::TestWithParam<int>
{
};

TEST_P(AtLevel, SubscribesInOrderAndHandsTheContextBack)
{
    InitScenario scenario;
    scenario.log_level = GetParam();
    Trace expected = allSubscribed(GetParam());
    expected.insert(expected.end(), {registerLine(0), "private context", "result 0"});
    EXPECT_EQ(playInit(scenario), expected);
}

TEST_P(AtLevel, FailedRegistrationIsOnlyLogged)
{
    InitScenario scenario;
    scenario.log_level = GetParam();
    scenario.registration_result = -3;
    Trace expected = allSubscribed(GetParam());
    expected.push_back(registerLine(-3));
    if (GetParam() != 0)
        expected.emplace_back(
            "log ERR aaaNcCmfClientReg \"aaa nc cmf client reg failed, iRet=-3.\"");
    expected.insert(expected.end(), {"private context", "result 0"});
    EXPECT_EQ(playInit(scenario), expected);
}

TEST_P(AtLevel, FailedSubscriptionEndsIt)
{
    for (std::size_t row = 1; row <= kLastRow; ++row) {
        SCOPED_TRACE("row " + std::to_string(row));
        InitScenario scenario;
        scenario.log_level = GetParam();
        scenario.failing_subscription = row;
        scenario.subscription_result = kSomeCode;
        EXPECT_EQ(playInit(scenario), failedAt(row, kSomeCode, GetParam()));
    }
}

TEST_P(AtLevel, CleanupEndsAllSubscriptionsWithOneCall)
{
    EXPECT_EQ(playCleanup(GetParam(), 0), Trace{"unsubscribe context -> 0"});
}

INSTANTIATE_TEST_SUITE_P(Lifecycle, AtLevel, testing::Values(0, 1, 2, 3, 4, 5));

TEST(Lifecycle, FailedSubscriptionPassesAnyCodeThrough)
{
    for (const std::int32_t code : {1, 3, 5, 7, 100, -1}) {
        InitScenario scenario;
        scenario.failing_subscription = 1;
        scenario.subscription_result = code;
        EXPECT_EQ(playInit(scenario), failedAt(1, code, kDebugLevel));
    }
}

TEST(Lifecycle, FailureOfTheLastSubscriptionNamesTheOneBefore)
{
    InitScenario scenario;
    scenario.log_level = 1;
    scenario.failing_subscription = kLastRow;
    scenario.subscription_result = kSomeCode;
    const Trace trace = playInit(scenario);
    EXPECT_EQ(trace.at(kLastRow + 1),
              "log ERR sr_plugin_init_cb \"Module orvek-aaa subscribe change for subtree "
              "/orvek-aaa:sysAaa/aaaDomainAuthenInfo/authenInfo failed : The operation failed.\"");
}

TEST(Lifecycle, CallbacksMayRunBeforeTheirSubscribeCallReturns)
{
    InitScenario scenario;
    std::size_t delivered = 0;
    scenario.during_subscribe = [&](std::size_t row) {
        Scenario enabled;
        enabled.callback = kSubscriptions[row - 1].callback;
        enabled.xpath = kSubscriptions[row - 1].xpath;
        enabled.event = 3;
        enabled.log_level = 0;
        const Trace trace = play(enabled);
        EXPECT_EQ(trace.front(), "changes-iter \"" + enabled.xpath + "\" -> 0");
        EXPECT_EQ(trace.at(1), "next -> 5");
        EXPECT_EQ(trace.back(), "result 0");
        for (const std::string &line : trace) {
            EXPECT_FALSE(line.starts_with("WRONG")) << line;
        }
        ++delivered;
    };
    Trace expected = allSubscribed(kDebugLevel);
    expected.insert(expected.end(), {registerLine(0), "private context", "result 0"});
    EXPECT_EQ(playInit(scenario), expected);
    EXPECT_EQ(delivered, kLastRow);
}

TEST(Lifecycle, CleanupIgnoresTheResult)
{
    EXPECT_EQ(playCleanup(kDebugLevel, 7), Trace{"unsubscribe context -> 7"});
}

TEST(Lifecycle, InitialisationCanFollowCleanup)
{
    const Trace first = playInit({});
    playCleanup(kDebugLevel, 0);
    EXPECT_EQ(playInit({}), first);
}

TEST(Lifecycle, ExportedIntegersAreZeroAndStayIt)
{
    for (const char *name : {"SYSTEM_SCRIPT_CHS", "SYSTEM_SCRIPT_CHS_INTERFACE"}) {
        const int *integer = pluginInteger(name);
        ASSERT_NE(integer, nullptr) << name;
        EXPECT_EQ(*integer, 0) << name;
        playInit({});
        play({});
        EXPECT_EQ(*integer, 0) << name;
    }
}

} // namespace

} // namespace aaanc::test
