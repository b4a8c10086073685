// The torture itself: that it lets fail what can fail, and finds what is wrong.
#include "torture/failures.hpp"
#include "torture/invariants.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace aaanc::test
{

namespace
{

// One change that sends one request.
Scenario oneChange(const char *callback)
{
    Scenario scenario;
    scenario.callback = callback;
    scenario.changes = {{0, std::nullopt, Value{}}};
    return scenario;
}

const Trace kBefore = {"changes-iter \"/a\" -> 0", "next -> 0 oper 0",
                       "node-name \"/a/b\" -> \"b\"", "key \"a\" \"k\" in \"/a/b\" -> \"v\""};
const Trace kRequest = {"cmf-init \"aaa\" 145 1 -> ok",
                        "cmf-object 5 3 0 -> 0",
                        "cmf-encode 0 12 00 -> 0",
                        "cmf-send -> 0",
                        "cmf-receive -> 0",
                        "cmf-decode -> 0",
                        "cmf-close"};
const Trace kValuesFreed = {"free null", "free new#1"};

Trace joined(const std::vector<Trace> &parts)
{
    Trace whole;
    for (const Trace &part : parts)
        whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

const Trace kGood =
    joined({kBefore, kRequest, kValuesFreed, {"next -> 5", "free-iter", "result 0"}});

Trace without(Trace trace, const std::string &line)
{
    std::erase(trace, line);
    return trace;
}

Trace twice(Trace trace, const std::string &line)
{
    const auto at = std::find(trace.begin(), trace.end(), line);
    trace.insert(at, line);
    return trace;
}

std::size_t findings(const Trace &trace, const char *callback = "aaaNcGlobalConfChanges")
{
    return brokenInvariants(oneChange(callback), trace).size();
}

} // namespace

TEST(Invariants, HoldInAGoodRun)
{
    EXPECT_EQ(findings(kGood), 0U);
}

TEST(Invariants, EachContextIsClosedOnce)
{
    EXPECT_EQ(findings(without(kGood, "cmf-close")), 1U);
    EXPECT_EQ(findings(twice(kGood, "cmf-close")), 1U);
}

TEST(Invariants, EachValueIsFreedOnceOldBeforeNew)
{
    EXPECT_EQ(findings(without(kGood, "free null")), 1U);
    EXPECT_EQ(findings(without(kGood, "free new#1")), 1U);
    EXPECT_EQ(findings(twice(kGood, "free new#1")), 1U);
    const Trace swapped = joined(
        {kBefore, kRequest, {"free new#1", "free null", "next -> 5", "free-iter", "result 0"}});
    EXPECT_EQ(findings(swapped), 1U);
    // Too late: after the next change is asked for.
    const Trace late = joined({kBefore, {"next -> 5"}, kValuesFreed, {"free-iter", "result 0"}});
    EXPECT_EQ(findings(late), 2U);
}

TEST(Invariants, TheIteratorIsFreedOnce)
{
    EXPECT_EQ(findings(without(kGood, "free-iter")), 1U);
    EXPECT_EQ(findings(twice(kGood, "free-iter")), 1U);
}

TEST(Invariants, NothingIsMisused)
{
    EXPECT_EQ(findings(joined({{"WRONG free of a value that is not held"}, kGood})), 1U);
}

TEST(Invariants, MethodListsKeepTheIteratorWhereItIsMeant)
{
    const Trace unpaired_in_loop = joined({kBefore, kValuesFreed, {"result 1"}});
    const Trace unpaired_at_end = joined({kBefore, kValuesFreed, {"next -> 5", "result 1"}});
    const Trace refused_in_loop = joined({kBefore, kRequest, kValuesFreed, {"result 7"}});
    for (const char *callback : {"aaaNcDomainAuthenConfChanges", "aaaNcDomainAccountConfChanges"}) {
        EXPECT_EQ(findings(unpaired_in_loop, callback), 0U);
        EXPECT_EQ(findings(unpaired_at_end, callback), 0U);
        EXPECT_EQ(findings(refused_in_loop, callback), 0U);
    }
    EXPECT_EQ(findings(unpaired_in_loop), 1U);
    EXPECT_EQ(findings(unpaired_at_end), 1U);
    EXPECT_EQ(findings(refused_in_loop), 1U);
}

TEST(Invariants, MethodListsFreeTheIteratorEverywhereElse)
{
    const char *const callback = "aaaNcDomainAuthenConfChanges";
    const Trace refused_at_end = joined({kBefore, kValuesFreed, {"next -> 5"}, kRequest});
    const Trace duplicate_group = joined({kBefore, kValuesFreed});
    const Trace next_failed = joined({kBefore, kValuesFreed, {"next -> 1"}});
    EXPECT_EQ(findings(joined({refused_at_end, {"free-iter", "result 7"}}), callback), 0U);
    EXPECT_EQ(findings(joined({refused_at_end, {"result 7"}}), callback), 1U);
    EXPECT_EQ(findings(joined({duplicate_group, {"free-iter", "result 7"}}), callback), 0U);
    EXPECT_EQ(findings(joined({duplicate_group, {"result 7"}}), callback), 1U);
    EXPECT_EQ(findings(joined({next_failed, {"free-iter", "result 1"}}), callback), 0U);
    EXPECT_EQ(findings(joined({next_failed, {"result 1"}}), callback), 1U);
}

namespace
{

std::vector<Scenario> failing(const Trace &trace)
{
    std::vector<Scenario> scenarios;
    forEachFailure(
        oneChange("aaaNcGlobalConfChanges"), trace,
        [&](const Scenario &scenario, const std::string &) { scenarios.push_back(scenario); });
    return scenarios;
}

// How many scenarios of `trace` have the call that was told.
template <typename HasFailed> std::size_t count(const Trace &trace, const HasFailed &hasFailed)
{
    const auto scenarios = failing(trace);
    return static_cast<std::size_t>(std::count_if(scenarios.begin(), scenarios.end(), hasFailed));
}

std::size_t countExchange(std::size_t number, std::int32_t Exchange::*result)
{
    return count(joined({kRequest, kRequest}), [&](const Scenario &scenario) {
        const auto found = scenario.exchanges.find(number);
        return found != scenario.exchanges.end() && found->second.*result != 0;
    });
}

} // namespace

TEST(Failures, CountTheCallsThatCanFail)
{
    const auto ignore = [](const Scenario &, const std::string &) {};
    // All but the close, the three frees and the result.
    EXPECT_EQ(forEachFailure(Scenario{}, kGood, ignore), kGood.size() - 5);
}

TEST(Failures, EachCallFailsAlone)
{
    const Trace twice_each = joined({kBefore, kBefore, {"unhex \"00\" 259 -> 0"}});
    EXPECT_GE(count(twice_each, [](const Scenario &s) { return s.changes_iter != 0; }), 8U);
    EXPECT_GE(count(twice_each, [](const Scenario &s) { return s.next_result.count(1) != 0; }), 8U);
    EXPECT_GE(count(twice_each, [](const Scenario &s) { return s.next_result.count(2) != 0; }), 8U);
    EXPECT_EQ(count(twice_each, [](const Scenario &s) { return s.node_name_null.count(2) != 0; }),
              1U);
    EXPECT_EQ(count({"changes-iter \"/a\" -> 4", "strerror 4"},
                    [](const Scenario &s) { return s.strerror_null; }),
              1U);
    EXPECT_EQ(count(twice_each, [](const Scenario &s) { return s.key_null.count(2) != 0; }), 1U);
    EXPECT_GE(count(twice_each, [](const Scenario &s) { return s.unhex_result.count(1) != 0; }),
              8U);
    for (const Scenario &s : failing(joined({twice_each, kRequest}))) {
        const std::size_t failures = (s.changes_iter != 0 ? 1U : 0U) + s.next_result.size() +
                                     s.node_name_null.size() + s.key_null.size() +
                                     s.unhex_result.size() + s.exchanges.size();
        EXPECT_EQ(failures, 1U);
    }
}

TEST(Failures, EachStepOfEachRequestFails)
{
    for (const std::size_t number : {1U, 2U}) {
        EXPECT_GE(countExchange(number, &Exchange::object_set), 8U);
        EXPECT_GE(countExchange(number, &Exchange::encode), 8U);
        EXPECT_GE(countExchange(number, &Exchange::send), 8U);
        EXPECT_GE(countExchange(number, &Exchange::receive), 8U);
        EXPECT_GE(countExchange(number, &Exchange::decode), 8U);
    }
    EXPECT_EQ(count(kRequest, [](const Scenario &s) { return s.exchanges.at(1).null_context; }),
              1U);
}

TEST(Failures, RepliesAreOfEveryShape)
{
    const auto replies = [](bool (*hasShape)(const Reply &)) {
        return count({kRequest[0], kRequest[5]}, [&](const Scenario &scenario) {
            const Exchange &exchange = scenario.exchanges.at(1);
            return !exchange.null_context && exchange.decode == 0 && hasShape(exchange.reply);
        });
    };
    EXPECT_GE(replies([](const Reply &reply) { return reply.decoded_length < 8; }), 4U);
    EXPECT_GE(replies([](const Reply &reply) { return reply.decoded_length > 1024; }), 4U);
    EXPECT_GE(replies([](const Reply &reply) { return reply.null_data; }), 4U);
    EXPECT_GE(replies([](const Reply &reply) {
                  return !reply.null_data && reply.decoded_length != reply.length_field + 8;
              }),
              4U);
    EXPECT_GE(replies([](const Reply &reply) {
                  return reply.result != 0 && reply.decoded_length == reply.length_field + 8;
              }),
              8U);
}

// A failure that is there already is not tried again.
TEST(Failures, WhatHappenedAnywayIsLeftOut)
{
    EXPECT_EQ(failing({"next -> 0 oper 0"}).size(), failing({"next -> 5"}).size() + 1);
    EXPECT_TRUE(failing({"node-name \"/a\" -> null"}).empty());
    EXPECT_TRUE(failing({"strerror 4 -> null"}).empty());
    EXPECT_TRUE(failing({"cmf-init \"aaa\" 145 1 -> null"}).empty());
}

} // namespace aaanc::test
