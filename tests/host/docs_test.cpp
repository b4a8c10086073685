// Commands print what the pages say.
//
// On a page an indented block that begins with "$ aaanc" is a command and its
// output; a line "..." stands for any lines.
#include <filesystem>
#include <span>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

constexpr std::string_view kIndent = "    ";
constexpr std::string_view kCommand = "    $ aaanc ";

struct Transcript {
    std::vector<std::string> arguments;
    std::vector<std::string> output;
};

// The words of a command, of which some are in single quotes.
std::vector<std::string> wordsOf(const std::string &command)
{
    std::vector<std::string> words;
    bool quoted = false;
    bool begun = false;
    for (const char character : command) {
        if (character == '\'') {
            quoted = !quoted;
        } else if (character == ' ' && !quoted) {
            begun = false;
        } else {
            if (!begun) {
                words.emplace_back();
                begun = true;
            }
            words.back() += character;
        }
    }
    return words;
}

std::vector<Transcript> transcriptsOn(const char *page)
{
    std::vector<Transcript> all;
    bool inside = false;
    for (const std::string &line : lines(readText(page))) {
        if (line.starts_with(kCommand)) {
            all.push_back({wordsOf(line.substr(kCommand.size())), {}});
            inside = true;
        } else if (inside && line.starts_with(kIndent)) {
            all.back().output.push_back(line.substr(kIndent.size()));
        } else {
            inside = false;
        }
    }
    return all;
}

// Whether `text` is as `pattern` says.
bool matches(std::span<const std::string> pattern, std::span<const std::string> text)
{
    if (pattern.empty()) {
        return text.empty();
    }
    if (pattern.front() == "...") {
        for (std::size_t skipped = 0; skipped <= text.size(); ++skipped) {
            if (matches(pattern.subspan(1), text.subspan(skipped))) {
                return true;
            }
        }
        return false;
    }
    return !text.empty() && pattern.front() == text.front() &&
           matches(pattern.subspan(1), text.subspan(1));
}

// A command of the project's root directory.
Outcome runAtRoot(const std::vector<std::string> &arguments)
{
    const ScratchDirectory scratch;
    std::filesystem::create_directory_symlink(AAANC_EXAMPLES, scratch.path() + "/examples");
    return Process(scratch.path(), arguments).wait();
}

// How many transcripts are on a page, all of which are as it says.
std::size_t expectTrue(const char *page)
{
    const std::vector<Transcript> all = transcriptsOn(page);
    for (const Transcript &transcript : all) {
        const Outcome outcome = runAtRoot(transcript.arguments);
        EXPECT_TRUE(matches(transcript.output, lines(outcome.output)))
            << transcript.arguments.back() << "\n"
            << outcome.output << outcome.errors;
    }
    return all.size();
}

TEST(Docs, SayWhatDoesNotReachTheService)
{
    EXPECT_EQ(expectTrue(AAANC_DOCS "/what-does-not-reach-the-service.md"), 12U);
}

TEST(Docs, ShowTheJsonForm)
{
    EXPECT_EQ(expectTrue(AAANC_DOCS "/json-format.md"), 2U);
}

// What a key of so many bytes comes to, with the log lines of errors.
Outcome runWithKey(const std::string &type, const std::string &key)
{
    const ScratchDirectory scratch;
    const std::string edit = fmt::format(
        R"({{"orvek-aaa:sysAaa": {{"tacacsIpv4Server": {{"tacacsIpv4ServerInfo": [{{
          "tacacsIpv4GroupName": "a", "tacacsIpv4ServerAddr": "192.0.2.1",
          "tacacsIpv4ServerPort": 49, "tacacsIpv4ServerKeyType": "{}",
          "tacacsIpv4ServerKey": "{}", "tacacsIpv4ServerPriority": 1}}]}}}}}})",
        type, key);
    return runAaanc(
        {"apply", "--no-enabled", "--log-level", "1", scratch.write("edit.json", edit)});
}

std::string hexOf(std::size_t bytes)
{
    std::string hex;
    for (std::size_t i = 0; i < bytes; ++i) {
        hex += "61";
    }
    return hex;
}

TEST(Docs, SayHowLongSharedKeysMayBe)
{
    const std::string module = readText(AAANC_YANG "/orvek-aaa.yang");
    std::string words;
    for (const char character : module) {
        if (character > ' ' || (character == ' ' && !words.ends_with(' '))) {
            words += character;
        }
    }
    std::size_t count = 0;
    constexpr std::string_view kLimits =
        "A plain key has at most 127 bytes when decoded, a cipher key at most 259.";
    for (std::size_t at = words.find(kLimits); at != std::string::npos;
         at = words.find(kLimits, at + 1)) {
        ++count;
    }
    EXPECT_EQ(count, 4U);

    for (const auto &[type, longest] : {std::pair("0", 127U), std::pair("1", 259U)}) {
        const Outcome fits = runWithKey(type, hexOf(longest));
        EXPECT_EQ(fits.status, 0);
        EXPECT_NE(fits.output.find("answer               0 (accepted)"), std::string::npos);
        EXPECT_EQ(runWithKey(type, hexOf(longest + 1)).status, 1);
    }
    EXPECT_NE(runWithKey("0", hexOf(128)).errors.find("plain key length[128] is too long."),
              std::string::npos);
    for (const Outcome &silent : {runWithKey("1", hexOf(260)), runWithKey("0", hexOf(260)),
                                  runWithKey("0", "campus-two"), runWithKey("1", "616")}) {
        EXPECT_EQ(silent.status, 1);
        EXPECT_EQ(silent.errors, "");
        EXPECT_NE(silent.output.find("apply, 7 changes\n    returned 7"), std::string::npos)
            << silent.output;
    }
}

TEST(Docs, ShowTheEndOfTheDemo)
{
    constexpr std::string_view kFence = "```\n";
    const std::string page = readText(AAANC_DOCS "/../README.md");
    const std::size_t begin = page.find("Edit examples/edit.xml");
    ASSERT_NE(begin, std::string::npos);
    const std::string shown = page.substr(begin, page.find(kFence, begin) - begin);
    const Outcome outcome =
        runAtRoot({"apply", "--startup", "examples/switch.xml", "examples/edit.xml"});
    EXPECT_TRUE(outcome.output.ends_with(shown)) << outcome.output << outcome.errors;
}

} // namespace

} // namespace aaanc::test
