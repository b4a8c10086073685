// That the fake platform finds misuse out, shown on a plug-in that misuses it.
#include "harness/fake_platform.hpp"

#include <gtest/gtest.h>

namespace aaanc::test
{

namespace
{

Trace wrongLines(std::uint32_t misuse)
{
    Scenario scenario;
    scenario.event = misuse;
    Change change;
    change.new_value = Value{"/m:c/l[k='v']/leaf", 18, "text"};
    scenario.changes.push_back(change);
    Trace trace = play(scenario);
    std::erase_if(trace, [](const std::string &line) { return line.rfind("WRONG ", 0) != 0; });
    return trace;
}

TEST(FakePlatform, FindsNothingWrongWithPlainCalls)
{
    EXPECT_EQ(wrongLines(0), Trace{});
}

TEST(FakePlatform, FindsMisuse)
{
    const char *const wrong[] = {
        "changes-iter with another session",
        "changes-iter while another iterator is open",
        "next with another session",
        "free of a value that is not held", // freed already
        "free of a value that is not held", // never given
        "node-name of what is no xpath of a value held",
        "node-name of what is no xpath of a value held",
        "key of what is no xpath of a value held",
        "key with a parsing state that is not zeroed", // from the start
        "key with a parsing state that is not zeroed", // used before
        "free-iter of an iterator that is not open",
        "next with an iterator that is not open",
        "unhex into a buffer that is not zeroed",
        "unhex without a text or a buffer",
        "strlcpy without a source or a destination",
        "log format without the prefix: \"[%s] (%s:%d) text\"",
        "log channel numbers: 483 PLUGIN 8 3 DBG",
        "log line number 0",
        "log format with a conversion of its own: \"[%s] (%s:%d) [AAA-NC]%x\"",
        "a context is left open",
        "cmf-init while another context is open",
        "cmf-send with a context that is not open",
        "cmf-close with a context that is not open",
        "cmf-encode of 1025 bytes",
        "cmf-decode with outputs that are not zeroed",
        "the heap is used",
    };
    std::uint32_t misuse = 0;
    for (const char *line : wrong) {
        ++misuse;
        EXPECT_EQ(wrongLines(misuse), Trace{std::string("WRONG ") + line}) << "misuse " << misuse;
    }
}

} // namespace

} // namespace aaanc::test
