// Plays scenario files through the built plug-in: a test suite a file, a test a
// case. Arguments: the files.
#include "harness/fake_platform.hpp"
#include "harness/scenario_file.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iostream>

namespace aaanc::test
{

namespace
{

// What GoogleTest takes as a name.
std::string testName(std::string text)
{
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }, '_');
    return text;
}

std::string suiteName(const std::filesystem::path &file)
{
    return testName(file.parent_path().filename().string() + ' ' + file.stem().string());
}

class ScenarioTest : public testing::Test
{
public:
    explicit ScenarioTest(ScenarioCase played) : played_(std::move(played)) {}

    void TestBody() override
    {
        const Trace trace = play(played_.scenario);
        const auto findings = mismatches(played_, trace);
        if (findings.empty())
            return;
        std::string report =
            played_.file + ':' + std::to_string(played_.line) + ": '" + played_.title + "'\n";
        for (const std::string &finding : findings)
            report += "  - " + finding + '\n';
        report += "  what the plug-in did:\n";
        for (const std::string &line : trace)
            report += "      " + line + '\n';
        ADD_FAILURE() << report;
    }

private:
    ScenarioCase played_;
};

class UnreadableFileTest : public testing::Test
{
public:
    explicit UnreadableFileTest(std::string error) : error_(std::move(error)) {}
    void TestBody() override
    {
        ADD_FAILURE() << error_;
    }

private:
    std::string error_;
};

void registerFile(const std::filesystem::path &file)
{
    const std::string suite = suiteName(file);
    std::vector<ScenarioCase> cases;
    try {
        cases = readScenarioFile(file.string());
    } catch (const ScenarioError &error) {
        testing::RegisterTest(suite.c_str(), "IsReadable", nullptr, nullptr, file.c_str(), 1,
                              [text = std::string(error.what())]() -> testing::Test * {
                                  return new UnreadableFileTest(text);
                              });
        return;
    }
    for (const ScenarioCase &played : cases)
        testing::RegisterTest(suite.c_str(), testName(played.title).c_str(), nullptr, nullptr,
                              played.file.c_str(), static_cast<int>(played.line),
                              [played]() -> testing::Test * { return new ScenarioTest(played); });
}

} // namespace

} // namespace aaanc::test

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc < 2) {
        std::cerr << "usage: " << argv[0] << " FILE...\n";
        return 2;
    }
    try {
        aaanc::test::loadPlugin(AAANC_PLUGIN);
    } catch (const std::runtime_error &error) {
        std::cerr << argv[0] << ": " << error.what() << '\n';
        return 2;
    }
    for (int at = 1; at < argc; ++at)
        aaanc::test::registerFile(argv[at]);
    return RUN_ALL_TESTS();
}
