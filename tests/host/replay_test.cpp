// aaanc replay and aaanc apply --record: what is recorded is what is replayed.
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "bad_cases.hpp"
#include "process.hpp"
#include "support.hpp"
#include "sysrepo.h"
#include "trace.hpp"

namespace aaanc::test
{

namespace
{

constexpr const char *kCanary = "63616e617279"; // "canary"

// What a run with --json tells of callbacks and requests.
std::vector<std::string> told(const Outcome &outcome)
{
    std::vector<std::string> records = lines(outcome.output);
    std::erase_if(records, [](const std::string &record) {
        return !record.starts_with(R"({"record":"callback")") &&
               !record.starts_with(R"({"record":"request")");
    });
    return records;
}

// The bytes of all requests, in no order.
std::vector<std::string> blocks(const Outcome &outcome)
{
    std::vector<std::string> all;
    for (const std::string &line : lines(outcome.output)) {
        const auto record = nlohmann::json::parse(line);
        if (record["record"] == "request") {
            all.push_back(record["hex"]);
        }
    }
    std::ranges::sort(all);
    return all;
}

std::vector<std::string> applyArguments(const std::string &base)
{
    std::vector<std::string> arguments = {"apply", "--json", "--hex", "--show-keys"};
    if (std::filesystem::exists(base + ".startup.xml")) {
        arguments.insert(arguments.end(), {"--startup", base + ".startup.xml"});
    }
    for (const char *ending : {".edit.xml", ".edit.json"}) {
        if (std::filesystem::exists(base + ending)) {
            arguments.insert(arguments.end(), {"--no-enabled", base + ending});
        }
    }
    return arguments;
}

// Runs apply with --record, then replay, which has to tell the same.
void expectSameReplayed(std::vector<std::string> apply)
{
    const ScratchDirectory scratch;
    const std::string recording = scratch.path() + "/recording";
    apply.insert(apply.end(), {"--record", recording});
    const Outcome applied = runAaanc(apply);
    ASSERT_NE(applied.status, 2) << applied.errors;
    const Outcome replayed = runAaanc({"replay", "--json", "--hex", "--show-keys", recording});
    EXPECT_EQ(replayed.status, applied.status) << replayed.errors;
    EXPECT_EQ(told(replayed), told(applied));
}

class Recorded : public testing::TestWithParam<std::string>
{
};

TEST_P(Recorded, IsReplayedAsItIsApplied)
{
    const std::string base = testData(GetParam());
    const Outcome applied = runAaanc(applyArguments(base));
    const Outcome replayed = runAaanc({"replay", "--json", "--hex", "--show-keys", base + ".txt"});
    EXPECT_EQ(replayed.status, 0) << replayed.errors;
    if (GetParam() == "recordings/15b-verify-fails-rc7") {
        // Another subscriber refused that commit, so that nothing was applied.
        EXPECT_EQ(blocks(replayed), std::vector<std::string>());
    } else {
        EXPECT_EQ(blocks(replayed), blocks(applied));
    }
    expectSameReplayed(applyArguments(base));
}

std::vector<std::string> allRecorded()
{
    std::vector<std::string> all;
    for (const std::string directory : {"recordings", "deliveries"}) {
        for (const std::string &name : namesOf(directory, ".txt")) {
            all.push_back(directory + "/" + name);
        }
    }
    std::ranges::sort(all);
    return all;
}

INSTANTIATE_TEST_SUITE_P(All, Recorded, testing::ValuesIn(allRecorded()), testName);

TEST(Record, TheExamplesAreReplayedAsTheyAreApplied)
{
    expectSameReplayed({"apply", "--json", "--hex", "--show-keys", "--startup",
                        AAANC_EXAMPLES "/switch.xml", AAANC_EXAMPLES "/edit.xml"});
}

using Random = std::mt19937;

std::size_t below(Random &random, std::size_t limit)
{
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

// An edit that makes or removes entries whose names have to be escaped.
nlohmann::json randomEdit(Random &random)
{
    const std::string names[] = {"a",       "a|b",         " new=x ", "back\\slash", "\\N",
                                 "o'brien", "line\nbreak", "t\tab",   "\xc3\xa9",    "-"};
    const auto name = [&] { return names[below(random, std::size(names))]; };
    const auto number = [&] { return below(random, 200) + 1; };
    nlohmann::json domain = {{"domainName", name()}};
    nlohmann::json group = {{"serverGroupName", name()},
                            {"serverGroupType", below(random, 2) == 0 ? "radius" : "tacacs"}};
    nlohmann::json server = {{"radiusIpv4GroupName", name()},
                             {"radiusIpv4ServerAddr", "192.0.2.1"},
                             {"radiusIpv4ServerAuthenPort", 1812},
                             {"radiusIpv4ServerAccountPort", 1813}};
    if (below(random, 3) == 0) {
        for (nlohmann::json *entry : {&domain, &group, &server}) {
            (*entry)["@"] = {{"ietf-netconf:operation", "remove"}};
        }
    } else {
        server["radiusIpv4ServerKeyType"] = std::to_string(below(random, 2));
        server["radiusIpv4ServerKey"] = kCanary;
    }
    nlohmann::json top = {{"aaaGlobal", {{"accountInterval", number()}}},
                          {"aaaDomain", {{"domainInfo", {domain}}}},
                          {"aaaGroup", {{"serverGroup", {group}}}},
                          {"radiusIpv4Server", {{"radiusIpv4ServerInfo", {server}}}}};
    return {{"orvek-aaa:sysAaa", top}};
}

TEST(Record, RandomEditsAreReplayedAsTheyAreApplied)
{
    Random random(4); // NOLINT: the same edits in every run
    const ScratchDirectory scratch;
    std::vector<std::string> arguments = {"apply", "--json", "--hex", "--show-keys"};
    for (int i = 0; i < 100; ++i) {
        arguments.push_back(
            scratch.write("edit" + std::to_string(i) + ".json", randomEdit(random).dump()));
    }
    expectSameReplayed(arguments);
}

std::string randomText(Random &random)
{
    const std::string_view likely = "| \\N=newx'\"-";
    std::string text;
    for (std::size_t left = below(random, 12); left > 0; --left) {
        text += below(random, 3) != 0 ? likely[below(random, likely.size())]
                                      : static_cast<char>(below(random, 255) + 1);
    }
    return text;
}

TEST(Trace, EveryTextIsReadAsItWasWritten)
{
    Random random(4); // NOLINT: the same texts in every run
    const std::string subtree = "/orvek-aaa:sysAaa/aaaGlobal";
    for (int i = 0; i < 5000; ++i) {
        const auto value = [&]() -> std::optional<Value> {
            if (below(random, 5) == 0) {
                return std::nullopt;
            }
            const auto text = [&] {
                return below(random, 5) == 0 ? std::nullopt : std::optional(randomText(random));
            };
            return Value{text(), SR_STRING_T, text()};
        };
        const Change change{static_cast<std::uint32_t>(below(random, 9)), value(), value()};
        const std::string text = traceOf(subtree, 1, {ChangeRef(change)});
        SCOPED_TRACE(text);
        const Trace trace = readTrace(schema(), "trace", text);
        ASSERT_EQ(trace.callbacks.size(), 1U);
        ASSERT_EQ(trace.callbacks[0].changes.size(), 1U);
        const Change &read = trace.callbacks[0].changes[0];
        ASSERT_EQ(read.oper, change.oper);
        for (const auto member : {&Change::old_value, &Change::new_value}) {
            ASSERT_EQ((read.*member).has_value(), (change.*member).has_value());
            if (change.*member) {
                ASSERT_EQ((read.*member)->xpath, (change.*member)->xpath);
                ASSERT_EQ((read.*member)->text, (change.*member)->text);
            }
        }
    }
}

TEST(Trace, RecordingsOfThePlatformAreWrittenAsTheyAre)
{
    for (const std::string &name : allRecorded()) {
        const std::string text = readText(testData(name + ".txt"));
        std::string written;
        for (const RecordedCallback &callback : readTrace(schema(), name, text).callbacks) {
            written += traceOf(callback.subtree, callback.event, refsTo(callback.changes));
        }
        std::vector<std::string> expected = lines(text);
        std::erase_if(expected, [](const std::string &line) { return line.starts_with('#'); });
        EXPECT_EQ(lines(written), expected) << name;
    }
}

TEST(Replay, RefusesBadRecordings)
{
    expectRefused("replay", "bad-traces.txt");
}

TEST(Replay, ReadsAllBeforeTheFirstCallback)
{
    const ScratchDirectory scratch;
    const std::string good = testData("recordings/01-global-set.txt");
    const std::string bad = scratch.write("bad.txt", "change\n");
    const Outcome outcome = runAaanc({"replay", good, bad});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "aaanc: " + bad + ":1: neither a callback nor a change nor a comment (#)\n");
}

TEST(Replay, TellsACallbackThatFails)
{
    setenv("AAANC_ODD_PLUGIN", "abort", 1);
    const ScratchDirectory scratch;
    const std::string trace =
        scratch.write("trace", "callback /orvek-aaa:sysAaa/aaaGlobal event 2\n");
    const Outcome outcome = runAaanc({"replay", "--plugin", AAANC_ODD_PLUGIN_FILE, trace});
    unsetenv("AAANC_ODD_PLUGIN");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find("aaaGlobal abort, 0 changes: returned 9\n"), std::string::npos);
}

TEST(Record, NotesWhatCallbacksReturned)
{
    setenv("AAANC_ODD_PLUGIN", "abort", 1);
    const ScratchDirectory scratch;
    const std::string edit =
        scratch.write("edit.json", R"({"orvek-aaa:sysAaa": {"aaaGlobal": {"startFailType": 1}}})");
    const std::string recording = scratch.path() + "/recording";
    const Outcome outcome = runAaanc(
        {"apply", "--no-enabled", "--plugin", AAANC_ODD_PLUGIN_FILE, "--record", recording, edit});
    unsetenv("AAANC_ODD_PLUGIN");
    EXPECT_EQ(outcome.status, 1);
    const std::string leaf = "/orvek-aaa:sysAaa/aaaGlobal/startFailType|19|1";
    EXPECT_EQ(readText(recording), "# Shared keys are in here as they were delivered.\n"
                                   "callback /orvek-aaa:sysAaa/aaaGlobal event 0\n"
                                   "change CREATED old=- new=/orvek-aaa:sysAaa/aaaGlobal|3|\n"
                                   "change CREATED old=- new=" +
                                       leaf +
                                       "\n"
                                       "# callback returned 7\n"
                                       "callback /orvek-aaa:sysAaa/aaaGlobal event 2\n"
                                       "change DELETED old=" +
                                       leaf +
                                       " new=-\n"
                                       "change DELETED old=/orvek-aaa:sysAaa/aaaGlobal|3| new=-\n"
                                       "# callback returned 9\n");
}

TEST(Record, MakesAFileForItsOwnerAlone)
{
    const ScratchDirectory scratch;
    const std::string recording = scratch.write("recording", "something old");
    EXPECT_EQ(runAaanc({"apply", "--record", recording}).status, 0);
    EXPECT_EQ(std::filesystem::status(recording).permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(readText(recording).find("old\n"), std::string::npos);
}

TEST(Record, TellsWhereItCannotBeWritten)
{
    const ScratchDirectory scratch;
    const std::string edit = scratch.write("edit.xml", readText(testData("good.xml")));
    const Outcome replaced = runAaanc({"apply", "--record", edit, edit});
    EXPECT_EQ(replaced.status, 2);
    EXPECT_EQ(replaced.output, "");
    EXPECT_NE(replaced.errors.find("is an input"), std::string::npos);
    EXPECT_EQ(readText(edit), readText(testData("good.xml")));

    const Outcome nowhere = runAaanc({"apply", "--record", "/nowhere/recording", edit});
    EXPECT_EQ(nowhere.status, 2);
    EXPECT_NE(nowhere.errors.find("/nowhere/recording: No such file"), std::string::npos);

    const Outcome full = runAaanc({"apply", "--record", "/dev/full", edit});
    EXPECT_EQ(full.status, 2);
    EXPECT_NE(full.errors.find("/dev/full: could not be written whole"), std::string::npos);
}

// A directory with something in it that a recording is going to replace.
class Replacing : public testing::Test
{
protected:
    // The names in the directory, but for what collects the output of a run.
    std::vector<std::string> names()
    {
        std::vector<std::string> all;
        for (const auto &entry : std::filesystem::directory_iterator(scratch_.path())) {
            all.push_back(entry.path().filename());
        }
        std::erase(all, "output");
        std::erase(all, "errors");
        std::ranges::sort(all);
        return all;
    }
    Process start(const char *oddity)
    {
        setenv("AAANC_ODD_PLUGIN", oddity, 1);
        Process process(scratch_.path(),
                        {"apply", "--plugin", AAANC_ODD_PLUGIN_FILE, "--record", "recording"});
        unsetenv("AAANC_ODD_PLUGIN");
        return process;
    }

    ScratchDirectory scratch_;
    std::string recording_ = scratch_.write("recording", "old");
    const std::vector<std::string> only_ = {"recording"};
};

TEST_F(Replacing, ARunThatCannotBeginKeepsWhatWasThere)
{
    const std::string no_plugin = scratch_.path() + "/none.so";
    EXPECT_EQ(runAaanc({"apply", "--plugin", no_plugin, "--record", recording_}).status, 2);
    EXPECT_EQ(readText(recording_), "old");
    EXPECT_EQ(start("init").wait().status, 1);
    EXPECT_EQ(readText(recording_), "old");
    EXPECT_EQ(names(), only_);
}

TEST_F(Replacing, ASignalKeepsWhatWasThere)
{
    Process process = start("hang");
    EXPECT_TRUE(eventually([&] { return !readText(scratch_.path() + "/output").empty(); }));
    EXPECT_EQ(names().size(), 2U);
    kill(process.id(), SIGTERM);
    EXPECT_EQ(process.wait().status, 128 + SIGTERM);
    EXPECT_EQ(readText(recording_), "old");
    EXPECT_EQ(names(), only_);
}

TEST_F(Replacing, APlugInThatBringsTheProcessDownLeavesARecordingBesideIt)
{
    EXPECT_EQ(start("crash").wait().status, -SIGKILL);
    EXPECT_EQ(readText(recording_), "old");
    const std::vector<std::string> left = names();
    ASSERT_EQ(left.size(), 2U);
    EXPECT_EQ(left[1].find("recording."), 0U);
    EXPECT_NE(readText(scratch_.path() + "/" + left[1])
                  .find("callback /orvek-aaa:sysAaa/aaaGlobal event 3\n"),
              std::string::npos);
}

TEST_F(Replacing, OfALinkItsTargetIsReplaced)
{
    const std::string link = scratch_.path() + "/link";
    std::filesystem::create_symlink("recording", link);
    EXPECT_EQ(runAaanc({"apply", "--record", link}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(readText(recording_).find("# Shared keys"), 0U);
}

TEST_F(Replacing, NothingIsReplacedThatTheRunIsMadeOf)
{
    const std::string plugin = scratch_.path() + "/plugin.so";
    std::filesystem::copy_file(AAANC_PLUGIN, plugin);
    const std::string module = scratch_.path() + "/orvek-aaa.yang";
    std::filesystem::copy_file(AAANC_YANG "/orvek-aaa.yang", module);
    for (const std::string &target : {plugin, module}) {
        const std::string before = readText(target);
        const Outcome outcome =
            runAaanc({"apply", "--plugin", plugin, "--yang", scratch_.path(), "--record", target});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.errors,
                  "aaanc: " + target + ": would be replaced by the recording, but is an input\n");
        EXPECT_EQ(readText(target), before);
    }
    const Outcome directory = runAaanc({"apply", "--record", scratch_.path()});
    EXPECT_EQ(directory.status, 2);
    EXPECT_EQ(directory.errors, "aaanc: " + scratch_.path() + ": is a directory\n");
}

// What apply records of an edit is larger than the edit.
TEST(Replay, ReadsWhatIsLargerThanAnEditMayBe)
{
    const ScratchDirectory scratch;
    const std::string recording =
        scratch.write("recording", readText(testData("recordings/01-global-set.txt")) + "#" +
                                       std::string(std::size_t{100} << 20U, ' ') + "\n");
    const Outcome outcome = runAaanc({"replay", recording});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
}

TEST(Replay, LogsNothingThatATerminalWouldObey)
{
    const ScratchDirectory scratch;
    const std::string trace =
        scratch.write("trace", "callback /orvek-aaa:sysAaa/aaaDomain/domainInfo event 1\n"
                               "change CREATED old=- new=/orvek-aaa:sysAaa/aaaDomain/"
                               "domainInfo[domainName='\\x1b[2J']/domainName|18|\\x1b[2J\n");
    const Outcome outcome = runAaanc({"replay", "--log-level", "4", trace});
    EXPECT_NE(outcome.errors.find("\\x1b[2J"), std::string::npos) << outcome.errors;
    EXPECT_EQ(outcome.errors.find('\x1b'), std::string::npos);
}

TEST(Replay, HidesSharedKeys)
{
    const std::string server =
        "/orvek-aaa:sysAaa/radiusIpv4Server/"
        "radiusIpv4ServerInfo[radiusIpv4GroupName='core'][radiusIpv4ServerAddr='192.0.2.1']"
        "[radiusIpv4ServerAuthenPort='1812'][radiusIpv4ServerAccountPort='1813']/";
    const std::string good =
        "callback /orvek-aaa:sysAaa/radiusIpv4Server/radiusIpv4ServerInfo event 1\n"
        "change CREATED old=- new=" +
        server + "radiusIpv4ServerKeyType|18|0\nchange CREATED old=- new=" + server +
        "radiusIpv4ServerKey|18|" + kCanary + "\n";
    const ScratchDirectory scratch;
    const std::string trace = scratch.write("trace", good);
    for (const std::string form : {"--json", "--hex"}) {
        const Outcome hidden = runAaanc({"replay", "--hex", "--log-level", "4", form, trace});
        EXPECT_EQ(hidden.status, 0);
        EXPECT_NE(hidden.output.find("****"), std::string::npos);
        for (const std::string &text : {hidden.output, hidden.errors}) {
            EXPECT_EQ(text.find("canary"), std::string::npos);
            EXPECT_EQ(text.find(kCanary), std::string::npos);
            EXPECT_EQ(text.find("63 61 6e 61 72 79"), std::string::npos);
        }
        const Outcome shown = runAaanc({"replay", "--hex", "--show-keys", form, trace});
        EXPECT_NE(shown.output.find("\"canary\""), std::string::npos);
    }
    // Nor does an error quote one.
    for (const char *spoilt : {"\\q", "|", "\x01", " new=", "\\N"}) {
        const Outcome refused =
            runAaanc({"replay", scratch.write("bad", good.substr(0, good.size() - 1) + spoilt)});
        EXPECT_EQ(refused.errors.find(kCanary), std::string::npos) << refused.errors;
    }
}

TEST(Replay, HelpsWithExamples)
{
    const Outcome help = runAaanc({"replay", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.output.find("Examples:\n  aaanc replay "), std::string::npos);
}

} // namespace

} // namespace aaanc::test
