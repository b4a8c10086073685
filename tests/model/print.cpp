#include "print.hpp"

#include <algorithm>
#include <sstream>

namespace aaanc::test::model
{
namespace
{

// Blanks, bars and dollar signs mean something in a scenario file.
std::string escaped(const std::string &text)
{
    constexpr const char *kDigits = "0123456789abcdef";
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\\' || c == '|')
            result += '\\';
        if (byte <= 0x20 || byte > 0x7e || c == '$')
            result += {'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 15U]};
        else
            result += c;
    }
    return result;
}

std::string printed(const Value &value)
{
    const bool is_text = value.type >= 12 && value.type <= 18;
    const bool is_number = value.type == 9 || (value.type >= 19 && value.type <= 21);
    std::string data = is_text ? "\\N" : is_number ? "0" : "";
    if (const auto *text = std::get_if<std::string>(&value.data))
        data = escaped(*text);
    else if (const auto *number = std::get_if<std::uint32_t>(&value.data))
        data = std::to_string(*number);
    return (value.xpath ? escaped(*value.xpath) : "\\N") + '|' + std::to_string(value.type) + '|' +
           data;
}

std::string printed(const std::optional<Value> &value)
{
    return value ? printed(*value) : "-";
}

std::string printed(const Change &change)
{
    static const char *const kOperations[] = {"CREATED", "MODIFIED", "DELETED", "MOVED"};
    const std::string oper =
        change.oper < 4 ? kOperations[change.oper] : std::to_string(change.oper);
    return "change " + oper + " old=" + printed(change.old_value) +
           " new=" + printed(change.new_value) + '\n';
}

void printStep(std::ostream &out, std::size_t number, const char *step, std::int32_t code)
{
    if (code != 0)
        out << "exchange " << number << ' ' << step << " returns " << code << '\n';
}

void print(std::ostream &out, std::size_t number, const Exchange &exchange)
{
    if (exchange.null_context)
        out << "exchange " << number << " context null\n";
    printStep(out, number, "object", exchange.object_set);
    printStep(out, number, "encode", exchange.encode);
    printStep(out, number, "send", exchange.send);
    printStep(out, number, "receive", exchange.receive);
    printStep(out, number, "decode", exchange.decode);
    const Reply &reply = exchange.reply;
    out << "exchange " << number << " reply result " << reply.result << " length-field "
        << reply.length_field << " decoded-length " << reply.decoded_length
        << (reply.null_data ? " null\n" : "\n");
}

void printFailures(std::ostream &out, const Scenario &scenario)
{
    if (scenario.changes_iter != 0)
        out << "changes-iter returns " << scenario.changes_iter << '\n';
    for (const auto &[call, code] : scenario.next_result)
        out << "next call " << call << " returns " << code << '\n';
    if (scenario.end_of_changes != 5)
        out << "end-of-changes is " << scenario.end_of_changes << '\n';
    if (!scenario.cuts_xpath)
        out << "xpath stays whole\n";
    if (scenario.strerror_null)
        out << "strerror is null\n";
    for (const std::size_t call : scenario.node_name_null)
        out << "node-name call " << call << " is null\n";
    for (const std::size_t call : scenario.key_null)
        out << "key call " << call << " is null\n";
    for (const auto &[call, code] : scenario.unhex_result)
        out << "unhex call " << call << " returns " << code << '\n';
    for (const auto &[number, exchange] : scenario.exchanges)
        print(out, number, exchange);
}

} // namespace

std::string printed(const Scenario &scenario)
{
    std::ostringstream out;
    out << "callback " << scenario.xpath << " event " << scenario.event << '\n';
    if (scenario.log_level != 4)
        out << "log-level " << scenario.log_level << '\n';
    for (const auto &[call, level] : scenario.log_level_from_call)
        out << "log-level " << level << " from call " << call << '\n';
    printFailures(out, scenario);
    for (const Change &change : scenario.changes)
        out << printed(change);
    return out.str();
}

std::string printedDifference(const Trace &expected, const Trace &actual)
{
    const auto [left, right] =
        std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    std::ostringstream out;
    for (auto line = expected.begin(); line != left; ++line)
        out << "  " << *line << '\n';
    for (auto line = left; line != expected.end(); ++line)
        out << "- " << *line << '\n';
    for (auto line = right; line != actual.end(); ++line)
        out << "+ " << *line << '\n';
    return out.str();
}

} // namespace aaanc::test::model
