// Lets every platform call of every scenario fail in every way, one call a run,
// and holds each run against the invariants and the model. A test a file.
//
//   torture_test [--every=N] FILE|DIRECTORY...
//
// With N, only every N-th failure is tried, where trying is slow.
#include "harness/fake_platform.hpp"
#include "harness/scenario_file.hpp"
#include "model/model.hpp"
#include "model/print.hpp"
#include "torture/failures.hpp"
#include "torture/invariants.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iostream>

namespace aaanc::test
{

namespace
{

namespace fs = std::filesystem;

struct Totals {
    std::size_t files = 0;
    std::size_t cases = 0;
    std::size_t calls = 0; // that can fail
    std::size_t runs = 0;
};

Totals totals;

std::size_t every = 1;
std::size_t failures_seen = 0;

// More findings of one file than these tell nothing new.
constexpr std::size_t kReportedFindings = 3;

class TortureTest : public testing::Test
{
public:
    explicit TortureTest(std::string file) : file_(std::move(file)) {}

    void TestBody() override
    {
        ++totals.files;
        try {
            for (const ScenarioCase &played : readScenarioFile(file_))
                torture(played);
        } catch (const ScenarioError &error) {
            ADD_FAILURE() << error.what();
        }
        if (findings_ > kReportedFindings)
            ADD_FAILURE() << findings_ - kReportedFindings << " more runs of " << file_
                          << " are wrong";
    }

private:
    // With the log as the case has it, and without any.
    void torture(const ScenarioCase &played)
    {
        ++totals.cases;
        const TakeFailure take = [&](const Scenario &failing, const std::string &what) {
            if (failures_seen++ % every != 0)
                return;
            check(played, failing, what);
            Scenario silent = failing;
            silent.log_level = 0;
            silent.log_level_from_call.clear();
            check(played, silent, what + ", without a log");
        };
        totals.calls += forEachFailure(played.scenario, play(played.scenario), take);
    }

    void check(const ScenarioCase &played, const Scenario &failing, const std::string &what)
    {
        ++totals.runs;
        const Trace trace = play(failing);
        const Trace expected = model::expect(failing);
        std::vector<std::string> findings = brokenInvariants(failing, trace);
        if (trace != expected)
            findings.emplace_back("the model (-) has it otherwise:\n" +
                                  model::printedDifference(expected, trace));
        if (findings.empty() || ++findings_ > kReportedFindings)
            return;
        std::string report = what + ":\n";
        for (const std::string &finding : findings)
            report += "  - " + finding + '\n';
        GTEST_MESSAGE_AT_(played.file.c_str(), static_cast<int>(played.line),
                          (played.title + ": " + report + model::printed(failing)).c_str(),
                          testing::TestPartResult::kNonFatalFailure);
    }

    std::string file_;
    std::size_t findings_ = 0;
};

constexpr std::string_view kEvery = "--every=";

std::vector<fs::path> scenarioFiles(const fs::path &place)
{
    if (!fs::is_directory(place))
        return {place};
    std::vector<fs::path> files;
    for (const auto &entry : fs::recursive_directory_iterator(place)) {
        if (entry.path().extension() == ".scn")
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// What GoogleTest takes as a name.
std::string testName(const fs::path &file)
{
    std::string name = file.parent_path().filename().string() + ' ' + file.stem().string();
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }, '_');
    return name;
}

void registerFile(const fs::path &file)
{
    testing::RegisterTest(
        "Torture", testName(file).c_str(), nullptr, nullptr, file.c_str(), 1,
        [name = file.string()]() -> testing::Test * { return new TortureTest(name); });
}

} // namespace

} // namespace aaanc::test

int main(int argc, char **argv)
{
    using namespace aaanc::test;
    testing::InitGoogleTest(&argc, argv);
    try {
        loadPlugin(AAANC_PLUGIN);
        for (const std::string_view argument :
             std::vector<std::string_view>(argv + 1, argv + argc)) {
            if (argument.rfind(kEvery, 0) == 0)
                every = std::max(std::stoul(std::string(argument.substr(kEvery.size()))), 1UL);
            else
                for (const auto &file : scenarioFiles(argument))
                    registerFile(file);
        }
    } catch (const std::exception &error) {
        std::cerr << argv[0] << ": " << error.what() << '\n';
        return 2;
    }
    const int result = RUN_ALL_TESTS();
    if (totals.runs == 0) {
        std::cerr << "usage: " << argv[0] << " [--every=N] FILE|DIRECTORY...\n";
        return 2;
    }
    std::cout << "torture: " << totals.runs << " runs, for " << totals.calls
              << " platform calls that can fail, in " << totals.cases << " cases of "
              << totals.files << " scenario files\n";
    return result;
}
