// That a broken request is noticed: a good run, broken in one place after another.
#include "requests.hpp"

#include "harness/payload.hpp"

#include <gtest/gtest.h>

namespace aaanc::test::fuzz
{

namespace
{

std::string hexOf(const std::string &bytes)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string hex;
    for (const char c : bytes) {
        hex += kDigits[static_cast<unsigned char>(c) >> 4];
        hex += kDigits[static_cast<unsigned char>(c) & 15];
    }
    return hex;
}

// The binding of RADIUS group "g" to VRF "v".
std::string binding()
{
    std::string payload(108, '\0');
    payload[5] = 'g';
    payload[56] = 'v';
    return payload;
}

Trace runOf(const RequestHeader &header, const std::string &payload)
{
    const std::string block = headerBytes(header) + payload;
    return {"changes-iter \"\" -> 0",
            "cmf-init \"aaa\" 145 1 -> ok",
            "cmf-object 24 3 0 -> 0",
            "cmf-encode 0 " + std::to_string(block.size()) + ' ' + hexOf(block) + " -> 0",
            "cmf-send -> 0",
            "cmf-receive -> 0",
            "cmf-decode -> 0",
            "cmf-close",
            "free-iter",
            "result 0"};
}

constexpr RequestHeader kHeader = {24, 1, 108};

Scenario scenarioOf(const std::string &callback = "aaaNcServerGroupVrfConfChanges")
{
    Scenario scenario;
    scenario.callback = callback;
    return scenario;
}

bool isGood(const Trace &trace, const Scenario &scenario = scenarioOf())
{
    return brokenRequests(scenario, trace).empty();
}

Trace without(std::size_t line)
{
    Trace trace = runOf(kHeader, binding());
    trace.erase(trace.begin() + static_cast<std::ptrdiff_t>(line));
    return trace;
}

Trace with(std::size_t line, const std::string &text)
{
    Trace trace = runOf(kHeader, binding());
    trace[line] = text;
    return trace;
}

TEST(Requests, AGoodOneIsGood)
{
    EXPECT_TRUE(isGood(runOf(kHeader, binding())));
}

TEST(Requests, EveryStepIsThereInItsOrder)
{
    for (std::size_t line = 1; line <= 7; ++line)
        EXPECT_FALSE(isGood(without(line))) << line;
    EXPECT_FALSE(isGood(with(4, "cmf-receive -> 0")));
    EXPECT_FALSE(isGood(with(8, "cmf-init \"aaa\" 145 1 -> ok")));
}

TEST(Requests, NothingFollowsAFailure)
{
    EXPECT_FALSE(isGood(with(4, "cmf-send -> 7")));
    EXPECT_FALSE(isGood(with(1, "cmf-init \"aaa\" 145 1 -> null")));
}

TEST(Requests, TheObjectRecordSuitsTheBlock)
{
    EXPECT_FALSE(isGood(with(2, "cmf-object 31 3 0 -> 0")));
    EXPECT_FALSE(isGood(with(2, "cmf-object 24 4 0 -> 0")));
    EXPECT_FALSE(isGood(with(2, "cmf-object 24 3 1 -> 0")));
}

TEST(Requests, TypeAndLengthBelongTogether)
{
    EXPECT_FALSE(isGood(runOf({24, 1, 107}, binding())));
    EXPECT_FALSE(isGood(runOf({24, 1, 107}, binding().substr(1))));
    EXPECT_FALSE(isGood(runOf({24, 2, 108}, binding())));
    EXPECT_FALSE(isGood(runOf(kHeader, binding()), scenarioOf("aaaNcServerGroupConfChanges")));
}

TEST(Requests, TextsAreTerminated)
{
    std::string payload = binding();
    payload.replace(5, 33, 33, 'g');
    EXPECT_FALSE(isGood(runOf(kHeader, payload)));
    payload[37] = '\0';
    EXPECT_TRUE(isGood(runOf(kHeader, payload)));
}

TEST(Requests, BytesThatNoFieldFillsAreZero)
{
    for (const std::size_t at : {0U, 7U, 38U, 55U, 58U, 107U}) {
        std::string payload = binding();
        payload[at] = 'x';
        EXPECT_FALSE(isGood(runOf(kHeader, payload))) << at;
    }
}

TEST(Requests, NumbersAreInTheirRange)
{
    std::string payload(68, '\0');
    const auto domain = scenarioOf("aaaNcDomainConfChanges");
    Trace trace = runOf({0, 1, 68}, payload);
    trace[2] = "cmf-object 0 3 0 -> 0";
    EXPECT_TRUE(isGood(trace, domain));
    putNumber(payload, 64, 4, 2);
    trace[3] = runOf({0, 1, 68}, payload)[3];
    EXPECT_FALSE(isGood(trace, domain));
}

TEST(Requests, TheLogLevelHolds)
{
    Scenario scenario = scenarioOf();
    scenario.log_level = 3;
    EXPECT_TRUE(isGood(with(8, "log ERR f \"\""), scenario));
    EXPECT_FALSE(isGood(with(8, "log DBG f \"\""), scenario));
    scenario.log_level = 0;
    EXPECT_FALSE(isGood(with(8, "log ERR f \"\""), scenario));
    EXPECT_FALSE(isGood(with(8, "strerror 7"), scenario));
}

TEST(Requests, TheResultComesLast)
{
    EXPECT_FALSE(isGood(without(9)));
    EXPECT_FALSE(isGood({}));
}

} // namespace

} // namespace aaanc::test::fuzz
