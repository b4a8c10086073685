// Whole runs of aaanc apply.
//
// runs/*.run: sections "file NAME", "arguments" (one a line), "status", "output",
// "errors" or "errors without line numbers" (those of log lines are left out).
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>

#include <gtest/gtest.h>

#include "canary.hpp"
#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

// "[DBG] (function:12) text" becomes "[DBG] (function) text".
std::string withoutLineNumbers(const std::string &log)
{
    std::string result;
    for (const std::string &line : lines(log)) {
        const std::size_t end = line.find(") ");
        const std::size_t colon = line.rfind(':', end);
        result += line.substr(0, colon) + line.substr(end) + "\n";
    }
    return result;
}

class Run : public testing::TestWithParam<std::string>
{
};

TEST_P(Run, IsAsWritten)
{
    const ScratchDirectory scratch;
    std::map<std::string, std::string> sections;
    std::string section;
    for (const std::string &line : lines(readText(testData("runs/" + GetParam() + ".run")))) {
        if (line.starts_with("--- ")) {
            section = line.substr(4);
            sections[section];
        } else {
            sections[section] += line + "\n";
        }
    }
    for (const auto &[name, text] : sections) {
        if (name.starts_with("file ")) {
            (void)scratch.write(name.substr(5), text);
        }
    }
    const Outcome outcome = Process(scratch.path(), lines(sections.at("arguments"))).wait();
    EXPECT_EQ(std::to_string(outcome.status) + "\n", sections.at("status"));
    if (sections.contains("output")) {
        EXPECT_EQ(outcome.output, sections.at("output"));
    }
    if (sections.contains("errors")) {
        EXPECT_EQ(outcome.errors, sections.at("errors"));
    } else {
        EXPECT_EQ(withoutLineNumbers(outcome.errors), sections.at("errors without line numbers"));
    }
}

std::vector<std::string> allRuns()
{
    std::vector<std::string> runs = namesOf("runs", ".run");
    std::ranges::sort(runs);
    return runs;
}

INSTANTIATE_TEST_SUITE_P(All, Run, testing::ValuesIn(allRuns()), testName);

TEST(Examples, AreAcceptedWhole)
{
    const std::string examples = AAANC_EXAMPLES;
    const Outcome outcome =
        runAaanc({"apply", "--startup", examples + "/switch.xml", examples + "/interval.xml",
                  examples + "/interval-delete.json"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_TRUE(lines(outcome.output).back().ends_with("All callbacks returned 0."));
    EXPECT_EQ(outcome.output.find("problem"), std::string::npos);
}

TEST(Help, TellsVersionAndExamples)
{
    const Outcome version = runAaanc({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "aaanc " AAANC_VERSION "\n");
    const Outcome help = runAaanc({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.output.find("Examples:\n  aaanc apply "), std::string::npos);
}

TEST(Apply, HidesSharedKeys)
{
    const ScratchDirectory scratch;
    const std::string edit = scratch.write("edit.json", kOneServer);
    for (const std::string form : {"--json", "--hex"}) {
        const Outcome hidden = runAaanc({"apply", "--hex", "--log-level", "4", form, edit});
        EXPECT_EQ(hidden.status, 0);
        const std::size_t state = hidden.output.find(form == "--json" ? "\"state\"" : "State of");
        ASSERT_NE(state, std::string::npos);
        EXPECT_NE(hidden.output.substr(0, state).find("****"), std::string::npos);
        EXPECT_NE(hidden.output.substr(state).find("****"), std::string::npos);
        expectNoCanary(hidden.output);
        expectNoCanary(hidden.errors);
        const Outcome shown = runAaanc({"apply", "--hex", "--show-keys", form, edit});
        EXPECT_NE(shown.output.find("\"canary\""), std::string::npos);
        EXPECT_EQ(shown.output.find("**"), std::string::npos);
    }
}

TEST(Apply, HidesSharedKeysThatAreRefused)
{
    const ScratchDirectory scratch;
    const std::string edit = scratch.write("edit.json", kOneServer);
    for (const std::string manner : {"refuse 43", "undecodable", "close", "away"}) {
        const Outcome outcome = runAaanc(
            {"apply", "--hex", "--log-level", "4", "--misbehave", "type 63: " + manner, edit});
        expectNoCanary(outcome.output);
        expectNoCanary(outcome.errors);
    }
}

TEST(Apply, HidesSharedKeysInErrors)
{
    const ScratchDirectory scratch;
    constexpr std::string_view kText = "\"63616e617279\"";
    const std::string good = kOneServer;
    // A key that is no text, one that is given twice, one with a stray word behind it, no key.
    for (const std::string bad :
         {"63616e617279", "{\"63616e617279\": 1}", "\"63616e617279\" 63616e617279",
          "\"63616e617279\", \"radiusIpv4ServerKey\": \"63616e617279\"", "\"63616e617279"}) {
        std::string text = good;
        text.replace(text.find(kText), kText.size(), bad);
        const Outcome outcome = runAaanc({"apply", scratch.write("bad.json", text)});
        EXPECT_EQ(outcome.status, 2) << bad;
        expectNoCanary(outcome.errors);
    }
}

TEST(Apply, TellsACommitThatIsRefused)
{
    const ScratchDirectory scratch;
    const std::string edit =
        scratch.write("edit.json", R"({"orvek-aaa:sysAaa": {"aaaGlobal": {"startFailType": 1}}})");
    setenv("AAANC_ODD_PLUGIN", "abort", 1);
    const Outcome outcome = Process(scratch.path(), {"apply", "--plugin", AAANC_ODD_PLUGIN_FILE,
                                                     "edit.json", "edit.json"})
                                .wait();
    unsetenv("AAANC_ODD_PLUGIN");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output,
              "Start-up without configuration: 0 changes\n"
              "  /orvek-aaa:sysAaa/aaaGlobal enabled, 0 changes: returned 0\n"
              "Edit edit.json: 3 changes\n"
              "  /orvek-aaa:sysAaa/aaaGlobal verify, 2 changes: returned 7\n"
              "  /orvek-aaa:sysAaa/aaaGlobal abort, 2 changes: returned 9\n"
              "edit.json was refused; no further edit is committed.\n"
              "State of the AAA service: 0 objects\n"
              "Summary: 1 edit, 3 callbacks, 0 requests (0 accepted, 0 refused, 0 unanswered). "
              "2 callbacks failed.\n");
}

TEST(Apply, TellsAnInitialisationThatFails)
{
    setenv("AAANC_ODD_PLUGIN", "init", 1);
    const Outcome outcome = runAaanc({"apply", "--plugin", AAANC_ODD_PLUGIN_FILE});
    unsetenv("AAANC_ODD_PLUGIN");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(lines(outcome.output).at(0),
              "The plug-in could not be initialised: sr_plugin_init_cb returned 4.");
}

TEST(Apply, EndsBySignalWhateverItWaitsForAndLeavesNothingBehind)
{
    const ScratchDirectory temporary;
    const ScratchDirectory scratch;
    setenv("TMPDIR", temporary.path().c_str(), 1);
    setenv("AAANC_ODD_PLUGIN", "hang", 1);
    Process process(scratch.path(), {"apply", "--plugin", AAANC_ODD_PLUGIN_FILE});
    unsetenv("AAANC_ODD_PLUGIN");
    unsetenv("TMPDIR");
    EXPECT_TRUE(eventually([&] { return !readText(scratch.path() + "/output").empty(); }));
    EXPECT_FALSE(std::filesystem::is_empty(temporary.path()));
    kill(process.id(), SIGTERM);
    EXPECT_EQ(process.wait().status, 128 + SIGTERM);
    EXPECT_TRUE(std::filesystem::is_empty(temporary.path()));
}

} // namespace

} // namespace aaanc::test
