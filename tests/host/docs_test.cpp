// Commands print what the pages say.
//
// In docs/what-does-not-reach-the-service.md an indented block that begins with
// "$ aaanc" is a command and its output; a line "..." stands for any lines.
#include <filesystem>
#include <span>

#include <gtest/gtest.h>

#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

constexpr const char *kPage = AAANC_DOCS "/what-does-not-reach-the-service.md";
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

std::vector<Transcript> transcripts()
{
    std::vector<Transcript> all;
    bool inside = false;
    for (const std::string &line : lines(readText(kPage))) {
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

TEST(Docs, SayWhatDoesNotReachTheService)
{
    const std::vector<Transcript> all = transcripts();
    EXPECT_GE(all.size(), 8U);
    for (const Transcript &transcript : all) {
        const Outcome outcome = runAtRoot(transcript.arguments);
        EXPECT_TRUE(matches(transcript.output, lines(outcome.output)))
            << transcript.arguments.back() << "\n"
            << outcome.output << outcome.errors;
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
