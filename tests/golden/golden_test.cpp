// Holds the bytes of a message of each type against the hex file of this
// machine's byte order. The fields of the same messages are held by the
// expectations in messages.scn.
#include "harness/fake_platform.hpp"
#include "harness/scenario_file.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace aaanc::test
{

namespace
{

const std::string kDirectory = AAANC_GOLDEN;

// The bytes that a hex file names: those of the object record, then those of
// the parameter, as lower-case digits, one blank between the two.
std::string goldenHex(const std::string &name)
{
    const std::string order = std::endian::native == std::endian::big ? "big" : "little";
    std::ifstream file(kDirectory + "/" + name + "." + order + ".hex");
    EXPECT_TRUE(file) << "no hex file for " << name;
    std::string hex;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        for (std::string word; words >> word;) {
            const std::size_t times = word.find('*');
            if (word == "parameter")
                hex += ' ';
            else if (times != std::string::npos)
                for (int left = std::stoi(word.substr(times + 1)); left > 0; --left)
                    hex += word.substr(0, times);
            else if (word != "object")
                hex += word;
        }
    }
    return hex;
}

std::string hexOfWord(std::uint32_t word)
{
    std::string hex;
    for (const std::uint8_t byte : std::bit_cast<std::array<std::uint8_t, 4>>(word)) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned>(byte));
        hex += digits.data();
    }
    return hex;
}

// The same of the only request of a trace.
std::string sentHex(const Trace &trace)
{
    std::string hex;
    for (const std::string &line : trace) {
        std::istringstream words(line);
        std::string call;
        words >> call;
        if (call == "cmf-object") {
            std::uint32_t type = 0;
            std::uint32_t operation = 0;
            std::uint32_t reserved = 0;
            words >> type >> operation >> reserved;
            hex += hexOfWord(type) + hexOfWord(operation) + hexOfWord(reserved);
        } else if (call == "cmf-encode") {
            std::string kind;
            std::string length;
            std::string bytes;
            words >> kind >> length >> bytes;
            hex += ' ' + bytes;
        }
    }
    return hex;
}

TEST(Golden, EachMessageIsByteForByteItsHexFile)
{
    const auto cases = readScenarioFile(kDirectory + "/messages.scn");
    EXPECT_EQ(cases.size(), 13U);
    for (const ScenarioCase &message : cases) {
        SCOPED_TRACE(message.title);
        const Trace trace = play(message.scenario);
        EXPECT_EQ(mismatches(message, trace), std::vector<std::string>());
        EXPECT_EQ(sentHex(trace), goldenHex(message.title));
    }
}

} // namespace

} // namespace aaanc::test
