#include "state_tables.hpp"

#include <algorithm>
#include <cstdint>
#include <span>

#include <fmt/format.h>

namespace aaanc
{

namespace
{

constexpr const char *kNone = "-";

const Field &fieldOf(const Request &request, std::string_view name)
{
    return *std::ranges::find(request.fields, name,
                              [](const Field &field) { return field.layout->name; });
}

std::uint32_t number(const Request &request, std::string_view name)
{
    return fieldOf(request, name).number;
}

std::string digits(const Request &request, std::string_view name)
{
    return fmt::format("{}", number(request, name));
}

// The meaning of a number, or its digits where it has none.
std::string meaning(const Request &request, std::string_view name)
{
    const Field &field = fieldOf(request, name);
    const auto found =
        std::ranges::find(field.layout->meanings, field.number, &NumberMeaning::number);
    return found != field.layout->meanings.end() ? std::string(found->meaning)
                                                 : fmt::format("{}", field.number);
}

std::string text(const Request &request, std::string_view name)
{
    const std::string value = fieldText(fieldOf(request, name));
    return value.empty() ? "\"\"" : value;
}

std::string key(const Request &request, bool show_keys)
{
    const std::string &plain = fieldOf(request, "plainKey").text;
    const std::string &cipher = fieldOf(request, "cipherKey").text;
    std::string shown = meaning(request, "keyType");
    for (const std::string_view name : {"plainKey", "cipherKey"}) {
        if (!fieldOf(request, name).text.empty()) {
            shown += " " + (show_keys ? text(request, name) : "****");
        }
    }
    return plain.empty() && cipher.empty() ? shown + " " + kNone : shown;
}

// Of what a RADIUS request can leave out, whether it gave it.
bool given(const Request &request, std::uint32_t leaf)
{
    return (number(request, "setFlag") & leaf) != 0;
}

std::string groups(const Request &request)
{
    std::string shown;
    for (int i = 0; i < 4; ++i) {
        const std::uint32_t type = number(request, fmt::format("groups[{}].groupType", i));
        const Field &name = fieldOf(request, fmt::format("groups[{}].groupName", i));
        if (type != 0 || !name.text.empty()) {
            shown += shown.empty() ? "" : ", ";
            shown += groupTypeMeaning(request, type);
            shown += name.text.empty() ? "" : " " + fieldText(name);
        }
    }
    return shown.empty() ? kNone : shown;
}

bool isAccounting(const Request &request)
{
    return meaning(request, "methodKind") == "accounting";
}

struct Column {
    std::string_view title;
    std::string (*cell)(const Request &request, bool show_keys);
};

struct Section {
    std::string_view title;
    std::vector<std::uint32_t> types;
    std::vector<Column> columns;
};

std::string protocol(const Request &request, bool /*show_keys*/)
{
    return std::string(request.layout->meaning.substr(0, request.layout->meaning.find(' ')));
}

template <std::size_t size> struct Name {
    constexpr Name(const char (&name)[size]) // NOLINT: as if it were the text
    {
        std::ranges::copy(name, text);
    }
    char text[size];
};

template <Name name> std::string textOf(const Request &request, bool /*show_keys*/)
{
    return text(request, name.text);
}

template <Name name> std::string digitsOf(const Request &request, bool /*show_keys*/)
{
    return digits(request, name.text);
}

template <Name name> std::string meaningOf(const Request &request, bool /*show_keys*/)
{
    return meaning(request, name.text);
}

const std::vector<Section> &sections()
{
    constexpr std::uint32_t kPriorityGiven = 0x40;
    constexpr std::uint32_t kKeyOrItsTypeGiven = 0x30;
    static const std::vector<Section> kSections = {
        {"Start-failure policy", {21}, {{"startFailType", digitsOf<"startFailType">}}},
        {"Accounting interval", {5}, {{"accountInterval", digitsOf<"accountInterval">}}},
        {"Source interfaces",
         {19},
         {{"interface", textOf<"srcInterfaceName">}, {"VRF", textOf<"vrfName">}}},
        {"Server groups", {22, 29}, {{"protocol", protocol}, {"group", textOf<"groupName">}}},
        {"VRFs of server groups",
         {24, 31},
         {{"protocol", protocol}, {"group", textOf<"groupName">}, {"VRF", textOf<"vrfName">}}},
        {"Domains", {0}, {{"domain", textOf<"domainName">}}},
        {"RADIUS servers (-: not given by the last request)",
         {63},
         {{"group", textOf<"groupName">},
          {"address", textOf<"Addr">},
          {"family", meaningOf<"family">},
          {"auth", digitsOf<"authPort">},
          {"acct", digitsOf<"acctPort">},
          {"priority",
           [](const Request &request, bool) {
               return given(request, kPriorityGiven) ? digits(request, "priority") : kNone;
           }},
          {"key",
           [](const Request &request, bool show_keys) {
               return given(request, kKeyOrItsTypeGiven) ? key(request, show_keys) : kNone;
           }}}},
        {"TACACS servers",
         {30},
         {{"group", textOf<"groupName">},
          {"address", textOf<"Addr">},
          {"family", meaningOf<"family">},
          {"port", digitsOf<"Port">},
          {"priority", digitsOf<"priority">},
          {"key", key}}},
        {"Method lists",
         {1},
         {{"domain", textOf<"domainName">},
          {"method list", meaningOf<"type">},
          {"stage",
           [](const Request &request, bool) {
               return isAccounting(request) ? meaning(request, "accountStage") : kNone;
           }},
          {"groups", [](const Request &request, bool) { return groups(request); }}}},
    };
    return kSections;
}

Table tableOf(const RunningState &state, const Section &section, bool show_keys)
{
    Table table;
    for (const Column &column : section.columns) {
        table.titles.emplace_back(column.title);
    }
    table.titles.emplace_back("request");
    for (const auto &[object, kept] : state.objects()) {
        if (std::ranges::find(section.types, object.first) == section.types.end()) {
            continue;
        }
        auto &row = table.rows.emplace_back();
        for (const Column &column : section.columns) {
            row.push_back(column.cell(kept.request, show_keys));
        }
        row.push_back(fmt::format("{}", kept.number));
    }
    return table;
}

} // namespace

std::vector<StateTable> stateTables(const RunningState &state, bool show_keys)
{
    std::vector<StateTable> tables;
    for (const Section &section : sections()) {
        Table table = tableOf(state, section, show_keys);
        if (!table.rows.empty()) {
            tables.push_back({section.title, std::move(table)});
        }
    }
    return tables;
}

} // namespace aaanc
