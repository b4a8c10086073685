// What docs/json-format.md says of records, held against what aaanc prints in runs of
// all kinds: a member that is printed is on the page, and what is on the page happens.
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "alone.hpp"
#include "cmf_wire.hpp"
#include "page.hpp"
#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

using Json = nlohmann::ordered_json;

constexpr const char *kMissing = "missing";

// The types of each member, by record: "number", "null", ..., and kMissing.
using Members = std::map<std::string, std::set<std::string>>;
using Records = std::map<std::string, Members>;

// "string or null, optional"
std::set<std::string> typesOf(const std::string &text)
{
    std::set<std::string> types;
    for (const std::string type : {"number", "string", "boolean", "object", "array", "null"}) {
        if (text.find(type) != std::string::npos) {
            types.insert(type);
        }
    }
    if (text.find("optional") != std::string::npos) {
        types.insert(kMissing);
    }
    return types;
}

// The tables of the page, with the content of a request put in where one refers to it.
Records documented()
{
    constexpr const char *kContent = "Content of a request";
    Records records;
    std::map<std::string, bool> with_content; // whether all of it is optional
    std::string record;
    for (const std::string &line : lines(readText(AAANC_DOCS "/json-format.md"))) {
        if (line.starts_with("### ")) {
            record = withoutQuotes(line.substr(4));
            records[record];
        } else if (line.starts_with("| [")) {
            with_content[record] = cellsOf(line).at(1) == "optional";
        } else if (line.starts_with("| `")) {
            const std::vector<std::string> cells = cellsOf(line);
            records[record][withoutQuotes(cells.at(0))] = typesOf(cells.at(1));
        }
    }
    for (const auto &[name, optional] : with_content) {
        for (auto [member, types] : records[kContent]) {
            if (optional) {
                types.insert(kMissing);
            }
            records[name][member] = types;
        }
    }
    records.erase(kContent);
    return records;
}

class Seen
{
public:
    void add(const std::string &output)
    {
        for (const std::string &line : lines(output)) {
            Json record = Json::parse(line);
            const std::string name = record.at("record");
            record.erase("record");
            add(name, record);
            if (name == "request") {
                add("request.answer", record.at("answer"));
            }
            for (const Json &object : record.value("objects", Json::array())) {
                add("state.objects", object);
            }
        }
    }
    // A member that some of the records of a kind lack is missing, too.
    [[nodiscard]] Records records() const
    {
        Records all;
        for (const auto &[name, objects] : objects_) {
            Members &members = all[name];
            for (const Json &object : objects) {
                for (const auto &[member, value] : object.items()) {
                    members[member].insert(value.type_name());
                }
            }
            for (auto &[member, types] : members) {
                for (const Json &object : objects) {
                    if (!object.contains(member)) {
                        types.insert(kMissing);
                    }
                }
            }
        }
        return all;
    }

private:
    void add(const std::string &name, const Json &object)
    {
        objects_[name].push_back(object);
    }

    std::map<std::string, std::vector<Json>> objects_;
};

std::string example(const std::string &name)
{
    return std::string(AAANC_EXAMPLES) + "/" + name;
}

std::string outputOf(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin() + 1, "--json");
    return runAaanc(arguments).output;
}

std::string outputWithOddPlugin(const char *oddity)
{
    setenv("AAANC_ODD_PLUGIN", oddity, 1);
    std::string output =
        outputOf({"apply", "--plugin", AAANC_ODD_PLUGIN_FILE, example("interval.xml")});
    unsetenv("AAANC_ODD_PLUGIN");
    return output;
}

// A service that is told something, and something that is no request.
std::string outputOfService()
{
    const ScratchDirectory scratch;
    const std::string socket = scratch.path() + "/aaa.sock";
    Alone service(scratch.path(), {"--json"});
    const auto connection = connectTo(socket, std::chrono::seconds(1));
    EXPECT_TRUE(connection);
    sendPacket(*connection, Bytes(4));
    receivePacket(*connection);
    runAaanc({"apply", "--no-enabled", "--socket", socket, example("interval.xml")});
    return service.end(SIGTERM).output;
}

Records printed()
{
    const ScratchDirectory scratch;
    const std::string recording = scratch.path() + "/recording";
    const std::string unknown = scratch.write("unknown", "000000630000000100000000");
    const std::string payload = scratch.write("payload", "0000001e");
    Seen seen;
    seen.add(outputOf({"apply", "--startup", example("switch.xml"), example("edit.xml")}));
    seen.add(outputOf({"apply", "--hex", "--no-enabled", "--misbehave", "request 1: refuse 43",
                       "--record", recording, example("interval.xml")}));
    seen.add(outputOf({"apply", "--misbehave", "close", example("interval.xml")}));
    seen.add(outputOf({"replay", recording}));
    seen.add(outputOf({"decode", "--hex", example("request.hex")}));
    seen.add(outputOf({"decode", unknown}));
    seen.add(outputOf({"decode", "--type", "5", payload}));
    seen.add(outputWithOddPlugin("verify"));
    seen.add(outputWithOddPlugin("init"));
    seen.add(outputOfService());
    return seen.records();
}

std::string asText(const Records &records)
{
    std::string text;
    for (const auto &[record, members] : records) {
        for (const auto &[member, types] : members) {
            text += record + "." + member + ":";
            for (const std::string &type : types) {
                text += " " + type;
            }
            text += "\n";
        }
    }
    return text;
}

TEST(JsonFormat, IsAsItIsDocumented)
{
    Records page = documented();
    EXPECT_EQ(page.size(), 11U);
    // The service holds, and a plug-in sends, nothing of which this is null.
    for (const char *record : {"request", "state.objects"}) {
        page[record]["meaning"].erase("null");
        page[record]["operation"].erase("null");
    }
    EXPECT_EQ(asText(printed()), asText(page));
}

} // namespace

} // namespace aaanc::test
