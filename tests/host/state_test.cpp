// What the AAA service holds in the end: after a configuration at start-up, and
// after the same configuration has been built edit by edit.
//
// A case of states/ has the sections "edit 1", "edit 2", ... and "differs": the
// objects that the service holds after one way only, each with its fields that
// are not zero. Those differences are by design.
#include <algorithm>
#include <map>
#include <set>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

using Json = nlohmann::ordered_json;

std::string describe(const Json &object)
{
    std::string text = object.at("meaning");
    for (const auto &[name, value] : object.at("fields").items()) {
        if (value != "" && value != 0) {
            text += fmt::format(" {}={}", name,
                                value.is_string() ? value.get<std::string>() : value.dump());
        }
    }
    return text;
}

// The objects in the state record of a run.
std::set<std::string> objectsAfter(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), {"apply", "--json"});
    const Outcome outcome = runAaanc(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    std::set<std::string> objects;
    for (const std::string &line : lines(outcome.output)) {
        const Json record = Json::parse(line);
        if (record.at("record") == "state") {
            for (const Json &object : record.at("objects")) {
                objects.insert(describe(object));
            }
        }
    }
    return objects;
}

std::string printed(const DataTree &data)
{
    char *text = nullptr;
    lyd_print_mem(&text, data.first(), LYD_XML, LYD_PRINT_WITHSIBLINGS);
    std::string result = text != nullptr ? text : "";
    std::free(text);
    return result;
}

std::string missing(std::string_view from, const std::set<std::string> &some,
                    const std::set<std::string> &others)
{
    std::string text;
    for (const std::string &object : some) {
        text += others.contains(object) ? "" : fmt::format("{}: {}\n", from, object);
    }
    return text;
}

class State : public testing::TestWithParam<std::string>
{
};

TEST_P(State, AfterReplayAndAfterEditsDiffersByDesignOnly)
{
    std::map<std::string, std::string> sections;
    std::string section;
    for (const std::string &line : lines(readText(testData("states/" + GetParam() + ".case")))) {
        if (line.starts_with("--- ")) {
            section = line.substr(4);
            sections[section];
        } else {
            sections[section] += line + "\n";
        }
    }
    const ScratchDirectory scratch;
    std::vector<std::string> edits;
    DataTree data;
    for (const auto &[name, text] : sections) {
        if (name.starts_with("edit ")) {
            edits.push_back(scratch.write(name + ".json", text));
            data =
                applyEdit(schema(), data, readDocument(schema(), name, text, DocumentKind::Edit));
        }
    }
    const std::string startup = scratch.write("startup.xml", printed(data));
    const std::set<std::string> edited = objectsAfter(edits);
    const std::set<std::string> replayed = objectsAfter({"--startup", startup});
    EXPECT_FALSE(edited.empty());
    EXPECT_EQ(missing("replayed", replayed, edited) + missing("edited", edited, replayed),
              sections.at("differs"));
}

INSTANTIATE_TEST_SUITE_P(All, State, testing::ValuesIn(namesOf("states", ".case")), testName);

} // namespace

} // namespace aaanc::test
