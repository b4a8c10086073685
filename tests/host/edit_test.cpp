// The meaning of edits: every operation, in XML and in JSON.
//
// A case has the sections "before", "edit xml", "edit json" and "after" (a
// configuration, or the error "error line X or J: ..." with its lines in XML
// and in JSON).
#include <algorithm>
#include <map>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "input_error.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

std::map<std::string, std::string> sectionsOf(const std::string &text)
{
    constexpr std::string_view kMark = "--- ";
    std::map<std::string, std::string> sections;
    std::string name;
    for (const std::string &line : lines(text)) {
        if (line.starts_with(kMark)) {
            name = line.substr(kMark.size());
            sections[name];
        } else {
            sections[name] += line + "\n";
        }
    }
    return sections;
}

DataTree configurationOf(const std::string &text)
{
    if (text.empty()) {
        return {};
    }
    return applyEdit(schema(), {},
                     readDocument(schema(), "before.xml", text, DocumentKind::Startup));
}

std::string print(const DataTree &data)
{
    char *text = nullptr;
    lyd_print_mem(&text, data.first(), LYD_XML, LYD_PRINT_WITHSIBLINGS);
    std::string result = text != nullptr ? text : "";
    std::free(text);
    return result;
}

// What the edit makes of the data, printed, or its error.
std::string outcome(const DataTree &before, const std::string &name, const std::string &edit)
{
    try {
        return print(
            applyEdit(schema(), before, readDocument(schema(), name, edit, DocumentKind::Edit)));
    } catch (const InputError &error) {
        return error.what();
    }
}

// "error line 3 or 4: REST" is "NAME:3: REST" in XML and "NAME:4: REST" in JSON.
std::string expectedOutcome(const std::string &after, const std::string &name, bool json)
{
    constexpr std::string_view kError = "error line ";
    if (!after.starts_with(kError)) {
        return print(configurationOf(after));
    }
    const std::string rest = lines(after).front().substr(kError.size());
    const std::size_t colon = rest.find(": ");
    const std::string xml_line = rest.substr(0, rest.find(" or "));
    const std::string json_line = rest.substr(rest.find(" or ") + 4, colon - rest.find(" or ") - 4);
    return fmt::format("{}:{}{}", name, json ? json_line : xml_line, rest.substr(colon));
}

class EditCase : public testing::TestWithParam<std::string>
{
protected:
    void check(const std::string &name, const std::string &section, bool json)
    {
        const auto sections = sectionsOf(readText(testData("edits/" + GetParam() + ".case")));
        const DataTree before = configurationOf(sections.at("before"));
        const std::string unchanged = print(before);
        EXPECT_EQ(outcome(before, name, sections.at(section)),
                  expectedOutcome(sections.at("after"), name, json));
        EXPECT_EQ(print(before), unchanged);
    }
};

TEST_P(EditCase, InXml)
{
    check("edit.xml", "edit xml", false);
}

TEST_P(EditCase, InJson)
{
    check("edit.json", "edit json", true);
}

std::vector<std::string> allCases()
{
    std::vector<std::string> cases = namesOf("edits", ".case");
    std::ranges::sort(cases);
    return cases;
}

INSTANTIATE_TEST_SUITE_P(All, EditCase, testing::ValuesIn(allCases()), testName);

TEST(Document, XmlMayBeWrappedAsNetconfDoes)
{
    for (const char *wrapper : {"config", "data"}) {
        const std::string text = fmt::format(
            R"(<nc:{0} xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0">
  <sysAaa xmlns="urn:orvek:yang:orvek-aaa"><aaaGlobal><startFailType>1</startFailType></aaaGlobal></sysAaa>
</nc:{0}>)",
            wrapper);
        const Document document = readDocument(schema(), "e.xml", text, DocumentKind::Edit);
        ASSERT_EQ(document.root.children.size(), 1U);
        EXPECT_EQ(document.root.children[0].line, 2U);
    }
}

TEST(Document, FormatIsToldByTheFirstCharacterWhereTheNameDoesNot)
{
    EXPECT_NO_THROW(
        readDocument(schema(), "edit", "\n {\"orvek-aaa:sysAaa\": {}}", DocumentKind::Edit));
    EXPECT_NO_THROW(readDocument(
        schema(), "edit", "\n <sysAaa xmlns=\"urn:orvek:yang:orvek-aaa\"/>", DocumentKind::Edit));
}

} // namespace

} // namespace aaanc::test
