// Input that nobody writes by hand: it ends in an error that names the place, with
// exit code 2, in bounded memory, and before anything is told to the plug-in.
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

constexpr int kLevels = 100'000;
constexpr const char *kOpen = "<sysAaa xmlns=\"urn:orvek:yang:orvek-aaa\">";

std::string repeated(const std::string &text, int times)
{
    std::string result;
    for (; times > 0; --times) {
        result += text;
    }
    return result;
}

// In UTF-16, with a byte order mark, the lower byte first.
std::string utf16(const std::string &ascii)
{
    std::string result = "\xff\xfe";
    for (const char character : ascii) {
        result += {character, '\0'};
    }
    return result;
}

// `arguments` are those before the file.
void expectRefused(std::vector<std::string> arguments, const std::string &file,
                   const std::string &error)
{
    arguments.push_back(file);
    const Outcome outcome = runAaanc(arguments);
    EXPECT_EQ(outcome.status, 2) << file;
    EXPECT_EQ(outcome.output, "") << file;
    EXPECT_EQ(outcome.errors.find("aaanc: " + file + error), 0U) << outcome.errors.substr(0, 500);
    EXPECT_LT(outcome.errors.size(), 1000U);
}

// A good edit comes first, so that something would be told if it could.
std::vector<std::string> apply()
{
    return {"apply", "--plugin", AAANC_PLUGIN, testData("good.xml")};
}

struct Text {
    const char *name;
    std::string text;
    const char *error; // behind the name of the file
};

// In the list of tests.
void PrintTo(const Text &text, std::ostream *stream)
{
    *stream << text.name;
}

class HostileText : public testing::TestWithParam<Text>
{
};

TEST_P(HostileText, IsRefused)
{
    const ScratchDirectory scratch;
    const Text &parameter = GetParam();
    expectRefused(apply(), scratch.write(parameter.name, parameter.text), parameter.error);
}

const std::string kEntries = repeated("\n<domainInfo><domainName>a</domainName></domainInfo>", 2);

const Text kTexts[] = {
    {"deep.xml", repeated("<a>", kLevels), ":1: unknown node \"a\""},
    {"deep-containers.xml", repeated(kOpen, kLevels),
     ":1: /orvek-aaa:sysAaa: unknown node \"sysAaa\""},
    {"deep-wrappers.xml",
     repeated("<config xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\">", kLevels),
     ":1: unknown node \"config\""},
    {"deep-in-leaf.xml",
     std::string(kOpen) + "\n<aaaGlobal><startFailType>" + repeated("<b>", kLevels),
     ":2: /orvek-aaa:sysAaa/aaaGlobal/startFailType: unknown node \"b\""},
    {"deep-entities.xml", "<!DOCTYPE a [<!ENTITY b \"" + repeated("b", 1000) + "\">]><a>&b;</a>",
     ":1: a document type declaration is not allowed"},
    {"deep-arrays.json", repeated("[", kLevels), ":1: an array where"},
    {"deep-objects.json", repeated("{\"orvek-aaa:sysAaa\":", kLevels),
     ":1: /orvek-aaa:sysAaa: unknown node \"sysAaa\""},
    {"deep-in-leaf.json",
     "{\"orvek-aaa:sysAaa\":{\"aaaGlobal\":\n{\"startFailType\":" + repeated("[", kLevels),
     ":2: /orvek-aaa:sysAaa/aaaGlobal: \"startFailType\" has to be a value, not an array"},
    {"deep-in-annotation.json", "{\"orvek-aaa:sysAaa\":\n{\"@\":" + repeated("[", kLevels),
     ":2: /orvek-aaa:sysAaa: an array where"},
    {"nul.xml", std::string(kOpen) + "\n" + std::string(1, '\0'), ":2: /orvek-aaa:sysAaa: "},
    {"nul.json", "{\n" + std::string(1, '\0') + "}", ":2: "},
    {"utf-8.xml", std::string(kOpen) + "\n<\xc0\x80/>", ":2: /orvek-aaa:sysAaa: "},
    {"utf-8-mark.xml", "\xef\xbb\xbf<\xff/>", ":1: "},
    {"utf-16.json", utf16("{\"orvek-aaa:sysAaa\": {}}"), ":1: "},
    {"utf-16.conf", utf16(kOpen), ":1: "},
    {"utf-16-cut.xml", utf16(std::string(kOpen) + "\n<aaaGlobal>") + "<",
     ":2: /orvek-aaa:sysAaa/aaaGlobal: "},
    {"utf-16-without.xml", "<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + std::string(kOpen),
     ":1: "},
    {"unknown-encoding.xml", "<?xml version=\"1.0\" encoding=\"EBCDIC-1\"?>" + std::string(kOpen),
     ":1: unknown encoding"},
    {"duplicate-entries.xml", kOpen + ("\n<aaaDomain>" + kEntries) + "</aaaDomain></sysAaa>",
     ":4: /orvek-aaa:sysAaa/aaaDomain/domainInfo[domainName='a']: duplicate of the one in line 3"},
    {"cut.json", "{\"orvek-aaa:sysAaa\":\n{\"aaaGlobal\": {", ":2: /orvek-aaa:sysAaa/aaaGlobal: "},
    {"unknown.xml", std::string(kOpen) + "\n<" + repeated("x", 400) + "/>",
     ":2: /orvek-aaa:sysAaa: unknown node \"xxx"},
};

INSTANTIATE_TEST_SUITE_P(All, HostileText, testing::ValuesIn(kTexts),
                         [](const testing::TestParamInfo<Text> &parameter) {
                             return testName({parameter.param.name, 0});
                         });

// An XML reader has to know UTF-16.
TEST(HostileInput, AnEditInUtf16IsAnEdit)
{
    const ScratchDirectory scratch;
    const std::string edit = readText(testData("good.xml"));
    EXPECT_EQ(
        runAaanc({"apply", "--plugin", AAANC_PLUGIN, scratch.write("e.xml", utf16(edit))}).status,
        0);
}

TEST(HostileInput, IsNotReadBeyondTheLimit)
{
    const ScratchDirectory scratch;
    const std::string large = scratch.write("large", kOpen);
    std::filesystem::resize_file(large, (std::uintmax_t{128} << 20U) + 1);
    const std::string edit = ": larger than 16 MiB";
    const std::string recording = ": larger than 128 MiB";
    const std::pair<std::vector<std::string>, std::string> commands[] = {
        {apply(), edit},
        {{"apply", "--plugin", AAANC_PLUGIN, "--startup"}, edit},
        {{"replay", "--plugin", AAANC_PLUGIN}, recording},
        {{"decode"}, edit}};
    for (const auto &[command, size] : commands) {
        expectRefused(command, large, size);
        expectRefused(command, "/dev/zero", size);
        expectRefused(command, scratch.path(), ": is a directory");
        expectRefused(command, scratch.path() + "/none", ": No such file or directory");
    }
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    EXPECT_LT(usage.ru_maxrss, 512 * 1024) << "KiB, with a sanitizer's own";
}

TEST(HostileInput, ADuplicateIsFoundAmongManyEntries)
{
    constexpr int kEntryCount = 50'000;
    const ScratchDirectory scratch;
    std::string text = std::string(kOpen) + "<aaaDomain>";
    for (int i = 0; i <= kEntryCount; ++i) {
        text += "\n<domainInfo><domainName>" + std::to_string(i % kEntryCount) +
                "</domainName></domainInfo>";
    }
    expectRefused(apply(), scratch.write("many.xml", text + "</aaaDomain></sysAaa>"),
                  ":50002: /orvek-aaa:sysAaa/aaaDomain/domainInfo[domainName='0']: duplicate of "
                  "the one in line 2");
}

} // namespace

} // namespace aaanc::test
