// Bad input is told with file, line and node, exit code 2, and before anything
// is committed. bad/expected.txt has what is said of each file in bad/.
#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

// The lines of bad/expected.txt.
std::vector<std::string> expectations()
{
    std::vector<std::string> all = lines(readText(testData("bad/expected.txt")));
    std::erase_if(all, [](const std::string &line) { return line.starts_with('#'); });
    return all;
}

class BadInput : public testing::TestWithParam<std::string>
{
};

TEST_P(BadInput, IsToldBeforeAnythingIsCommitted)
{
    const std::string file = GetParam().substr(0, GetParam().find(':'));
    const std::string path = testData("bad/" + file);
    const Outcome outcome =
        runAaanc({"apply", "--plugin", AAANC_PLUGIN, testData("good.xml"), path});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "aaanc: " + testData("bad/").string() + GetParam() + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    All, BadInput, testing::ValuesIn(expectations()),
    [](const testing::TestParamInfo<std::string> &parameter) {
        return testName({parameter.param.substr(0, parameter.param.find(':')), 0});
    });

TEST(BadInputFiles, AreAllExpected)
{
    std::vector<std::string> expected;
    for (const std::string &line : expectations()) {
        expected.push_back(line.substr(0, line.find(':')));
    }
    std::vector<std::string> found;
    for (const std::string ending : {".xml", ".json"}) {
        for (const std::string &name : namesOf("bad", ending)) {
            found.push_back(name + ending);
        }
    }
    std::ranges::sort(expected);
    std::ranges::sort(found);
    EXPECT_EQ(found, expected);
}

struct BadCall {
    std::vector<std::string> arguments;
    std::string error; // what the error has in it
};

TEST(BadCalls, ExitWith2)
{
    const ScratchDirectory scratch;
    const std::string large = scratch.write("large.xml", std::string((16U << 20U) + 1, ' '));
    const std::string operation =
        scratch.write("startup.json",
                      "{\"orvek-aaa:sysAaa\": {\n\"@\": {\"ietf-netconf:operation\": \"merge\"}}}");
    const std::string no_plugin = scratch.write("plugin.so", "not a library");
    const std::string long_path(200, 'x');
    const BadCall calls[] = {
        {{}, "subcommand is required"},
        {{"aply"}, "unknown command \"aply\""},
        {{"apply", "--no-such-option"}, "--no-such-option"},
        {{"apply", "--log-level", "5"}, "--log-level"},
        {{"apply", "--receive-timeout", "0"}, "--receive-timeout"},
        {{"apply", "--receive-timeout", "nan"}, "--receive-timeout: nan is no number of seconds"},
        {{"apply", "--misbehave", "request 3 refuse 43"},
         "\"request 3 refuse 43\" lacks the colon"},
        {{"apply", "--socket", "aaa.sock", "--misbehave", "silent"}, "excludes --misbehave"},
        {{"replay", "--misbehave", "silent", "--socket", "aaa.sock", no_plugin}, "excludes"},
        {{"apply", "--socket", ""}, "the path of the socket is empty"},
        {{"service", "--socket", ""}, "the path of the socket is empty"},
        {{"apply", "--socket", long_path}, long_path + ": longer than the 107 bytes"},
        {{"service", "--socket", long_path}, long_path + ": longer than the 107 bytes"},
        {{"apply", "-", "-"}, "standard input: is named twice"},
        {{"apply", "--startup", "-", "-"}, "standard input: is named twice"},
        {{"replay", "-", no_plugin, "-"}, "standard input: is named twice"},
        {{"replay", "/proc/self/mem"}, "/proc/self/mem: Input/output error"},
        {{"apply", "/nowhere.xml"}, "/nowhere.xml: No such file or directory"},
        {{"apply", scratch.path()}, scratch.path() + ": is a directory"},
        {{"apply", large}, large + ": larger than 16 MiB"},
        {{"apply", "--startup", operation},
         operation + ":2: /orvek-aaa:sysAaa: a start-up configuration has no operations"},
        {{"apply", "--yang", "/nowhere"}, "/nowhere: not a directory with YANG modules"},
        {{"apply", "--yang", scratch.path()},
         scratch.path() + ": orvek-aaa: the module cannot be loaded"},
        {{"apply", "--plugin", no_plugin}, "the plug-in cannot be loaded: "},
        {{"service"}, "--socket is required"},
        {{"service", "--socket", no_plugin}, no_plugin + ": is there and no socket"},
    };
    for (const BadCall &call : calls) {
        const Outcome outcome = runAaanc(call.arguments);
        EXPECT_EQ(outcome.status, 2) << call.error;
        EXPECT_EQ(outcome.output, "") << call.error;
        EXPECT_EQ(outcome.errors.find("aaanc: "), 0U) << outcome.errors;
        EXPECT_NE(outcome.errors.find(call.error), std::string::npos) << outcome.errors;
    }
}

TEST(BadCalls, NameADirectoryForTemporaryFilesThatIsNone)
{
    const ScratchDirectory scratch;
    setenv("TMPDIR", "/nowhere", 1);
    Process process(scratch.path(), {"apply"});
    unsetenv("TMPDIR");
    const Outcome outcome = process.wait();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, "aaanc: /nowhere: no temporary directory can be made there (TMPDIR): "
                              "No such file or directory\n");
}

} // namespace

} // namespace aaanc::test
