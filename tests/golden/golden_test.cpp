// Holds the bytes of a message of each type against the hex file of this
// machine's byte order. The fields of the same messages are held by the
// expectations in messages.scn.
#include "harness/fake_platform.hpp"
#include "harness/scenario_file.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
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

// Where two of these first differ, for a reader: the hex of a whole message is too
// long to be compared by eye.
std::string firstDifference(const std::string &sent, const std::string &golden)
{
    const auto common = std::mismatch(sent.begin(), sent.end(), golden.begin(), golden.end()).first;
    const auto at = static_cast<std::size_t>(common - sent.begin());
    const std::size_t parameter = golden.find(' ') + 1;
    return at < parameter ? "byte " + std::to_string(at / 2) + " of the object record"
                          : "byte " + std::to_string((at - parameter) / 2) + " of the parameter";
}

TEST(Golden, ADifferenceIsNamedByItsPlace)
{
    EXPECT_EQ(firstDifference("01020304 0506", "01020305 0506"), "byte 3 of the object record");
    EXPECT_EQ(firstDifference("01020304 0506", "01020304 1506"), "byte 0 of the parameter");
    EXPECT_EQ(firstDifference("01020304 0506", "01020304 0507"), "byte 1 of the parameter");
    EXPECT_EQ(firstDifference("01020304 05", "01020304 0506"), "byte 1 of the parameter");
    EXPECT_EQ(firstDifference("", "01020304 0506"), "byte 0 of the object record");
}

TEST(Golden, EachMessageIsByteForByteItsHexFile)
{
    const auto cases = readScenarioFile(kDirectory + "/messages.scn");
    EXPECT_EQ(cases.size(), 13U);
    for (const ScenarioCase &message : cases) {
        SCOPED_TRACE(message.title);
        const Trace trace = play(message.scenario);
        EXPECT_EQ(mismatches(message, trace), std::vector<std::string>());
        const std::string sent = sentHex(trace);
        const std::string golden = goldenHex(message.title);
        EXPECT_EQ(sent, golden) << "from " << firstDifference(sent, golden) << " on";
    }
}

} // namespace

} // namespace aaanc::test
