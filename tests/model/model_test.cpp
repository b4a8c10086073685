// Tests of the model and of its tools; none of them loads the plug-in.
#include "../harness/scenario_file.hpp"
#include "generator.hpp"
#include "model.hpp"
#include "print.hpp"
#include "shrink.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace aaanc::test::model
{
namespace
{

std::vector<std::filesystem::path> scenarioFiles()
{
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(AAANC_SCENARIOS)) {
        if (entry.path().extension() == ".scn")
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::uint64_t fingerprint(const std::string &text, std::uint64_t start)
{
    constexpr std::uint64_t kPrime = 0x100000001b3;
    for (const char c : text)
        start = (start ^ static_cast<unsigned char>(c)) * kPrime;
    return start;
}

// Writes the scenario as a file, reads the file, and removes it.
Scenario throughFile(const Scenario &scenario)
{
    const std::string path = testing::TempDir() + "printed-scenario.scn";
    std::ofstream(path) << "== printed ==\n" << printed(scenario) << "result 0\n";
    const Scenario read = readScenarioFile(path).at(0).scenario;
    std::filesystem::remove(path);
    return read;
}

std::size_t textSize(const Scenario &scenario)
{
    return printed(scenario).size();
}

bool sendsPriority200(const Scenario &scenario)
{
    const Trace trace = expect(scenario);
    return std::any_of(trace.begin(), trace.end(), [](const std::string &line) {
        return line.find("priority=200.") != std::string::npos;
    });
}

Scenario manyServers()
{
    Scenario scenario;
    scenario.callback = "aaaNcRadiusIpv4ConfChanges";
    scenario.xpath = "/orvek-aaa:sysAaa/radiusIpv4Server/radiusIpv4ServerInfo";
    scenario.event = 3;
    scenario.cuts_xpath = false;
    scenario.log_level_from_call[1] = 5;
    for (std::uint32_t i = 0; i < 6; ++i) {
        Change change;
        change.new_value =
            Value{scenario.xpath + "[radiusIpv4GroupName='core'][radiusIpv4ServerAddr='192.0.2." +
                      std::to_string(i) +
                      "'][radiusIpv4ServerAuthenPort='1812'][radiusIpv4ServerAccountPort='1813']"
                      "/radiusIpv4ServerPriority",
                  19, std::uint32_t{i == 3 ? 200U : i}};
        scenario.changes.push_back(change);
    }
    return scenario;
}

TEST(TheModel, AgreesWithEveryScenarioFile)
{
    const auto files = scenarioFiles();
    ASSERT_FALSE(files.empty());
    for (const auto &file : files) {
        for (const ScenarioCase &expected : readScenarioFile(file)) {
            for (const std::string &mismatch : mismatches(expected, expect(expected.scenario)))
                ADD_FAILURE_AT(expected.file.c_str(), static_cast<int>(expected.line))
                    << expected.title << ": " << mismatch;
        }
    }
}

TEST(TheModel, RefusesACallbackThatDoesNotExist)
{
    Scenario scenario;
    scenario.callback = "aaaNcTacacsIpv4ConfChanges";
    EXPECT_THROW(expect(scenario), std::invalid_argument);
}

// A seed must replay on a target of another word size and byte order. After a
// change of the generator the value is another; it must be one for all targets.
TEST(TheGenerator, MakesTheSameScenariosOnEveryTarget)
{
    std::uint64_t all = 0xcbf29ce484222325;
    for (std::uint64_t index = 0; index < 2000; ++index)
        all = fingerprint(printed(randomScenario(1, index)), all);
    EXPECT_EQ(all, 0x40e70e6d0fcadeafU);
}

TEST(TheGenerator, MakesOtherScenariosFromOtherSeedsAndNumbers)
{
    const std::string one = printed(randomScenario(1, 1));
    EXPECT_EQ(one, printed(randomScenario(1, 1)));
    EXPECT_NE(one, printed(randomScenario(2, 1)));
    EXPECT_NE(one, printed(randomScenario(1, 2)));
}

TEST(APrintedScenario, ReadsBackFromAFile)
{
    for (std::uint64_t index = 0; index < 2000; ++index) {
        const Scenario scenario = randomScenario(5, index);
        const Scenario read = throughFile(scenario);
        ASSERT_EQ(printed(read), printed(scenario));
        ASSERT_EQ(expect(read), expect(scenario)) << printed(scenario);
    }
}

TEST(TheShrinker, KeepsWhatFailsAndNothingElse)
{
    const Scenario smallest = shrunk(manyServers(), sendsPriority200);
    EXPECT_TRUE(sendsPriority200(smallest));
    EXPECT_EQ(printed(smallest),
              "callback /orvek-aaa:sysAaa/radiusIpv4Server/radiusIpv4ServerInfo event 1\n"
              "change CREATED old=- "
              "new=/orvek-aaa:sysAaa/radiusIpv4Server/radiusIpv4ServerInfo"
              "[radiusIpv4GroupName=''][radiusIpv4ServerAddr=''][radiusIpv4ServerAuthenPort='']"
              "[radiusIpv4ServerAccountPort='']/radiusIpv4ServerPriority|19|200\n");
}

TEST(TheShrinker, MakesNothingLarger)
{
    const auto fails = [](const Scenario &scenario) {
        return expect(scenario).back() == "result 7";
    };
    std::size_t shrunk_ones = 0;
    for (std::uint64_t index = 0; index < 300; ++index) {
        const Scenario scenario = randomScenario(9, index);
        if (!fails(scenario))
            continue;
        const Scenario smallest = shrunk(scenario, fails);
        EXPECT_TRUE(fails(smallest));
        EXPECT_LE(textSize(smallest), textSize(scenario));
        ++shrunk_ones;
    }
    EXPECT_GT(shrunk_ones, 0U);
}

} // namespace
} // namespace aaanc::test::model
