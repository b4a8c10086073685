#include "story.hpp"

#include "../harness/device.hpp"
#include "bytes.hpp"

#include <algorithm>
#include <cstdlib>

namespace aaanc::test::model
{
namespace
{

bool starts(std::string_view line, std::string_view with)
{
    return line.substr(0, with.size()) == with;
}

bool ends(std::string_view line, std::string_view with)
{
    return line.size() >= with.size() && line.substr(line.size() - with.size()) == with;
}

unsigned digit(char c)
{
    return static_cast<unsigned>(c <= '9' ? c - '0' : c - 'a' + 10);
}

Taken takenOf(const Change &change)
{
    Taken taken;
    taken.oper = change.oper;
    const auto &value = change.oper == 2 ? change.old_value : change.new_value;
    if (!value || !value->xpath)
        return taken;
    if (const auto offset = nodeNameOffset(*value->xpath))
        taken.leaf = value->xpath->substr(*offset);
    if (const auto *text = std::get_if<std::string>(&value->data))
        taken.text = *text;
    return taken;
}

} // namespace

std::string Sent::text(std::size_t offset) const
{
    return offset < payload.size() ? payload.c_str() + offset : "";
}

std::uint32_t Sent::byte(std::size_t offset) const
{
    return static_cast<unsigned char>(payload.at(offset));
}

std::uint32_t Sent::half(std::size_t offset) const
{
    std::uint16_t number = 0;
    std::memcpy(&number, &payload.at(offset), sizeof number);
    return number;
}

std::uint32_t Sent::word(std::size_t offset) const
{
    return wordAt(payload, offset);
}

Story::Story(const Scenario &what, const Expectation &expected)
    : scenario(what), facts(expected.facts)
{
    for (const std::string &line : expected.trace)
        read(line);
}

void Story::read(const std::string &line)
{
    if (starts(line, "log ERR "))
        errors += line + '\n';
    else if (starts(line, "log DBG "))
        debugs += line + '\n';
    else if (starts(line, "next -> 0 "))
        taken.push_back(takenOf(scenario.changes.at(taken.size())));
    else if (starts(line, "cmf-init"))
        ++contexts;
    else if (starts(line, "cmf-encode "))
        readRequest(line);
    else if (starts(line, "key "))
        key_missing = key_missing || ends(line, " -> null");
    else if (starts(line, "unhex "))
        key_not_decoded = key_not_decoded || !ends(line, " -> 0");
    else if (line == "free-iter")
        iterator_freed = true;
    else if (starts(line, "result "))
        result = static_cast<std::int32_t>(std::strtol(line.c_str() + 7, nullptr, 10));
}

// cmf-encode 0 LENGTH HEX -> RC
void Story::readRequest(std::string_view line)
{
    const std::size_t first = line.find(' ', line.find(' ', line.find(' ') + 1) + 1) + 1;
    const std::size_t last = line.find(' ', first);
    std::string bytes;
    for (std::size_t at = first; at < last; at += 2)
        bytes += static_cast<char>(digit(line[at]) * 16 + digit(line[at + 1]));
    requests.push_back({wordAt(bytes, 0), wordAt(bytes, 4), wordAt(bytes, 8), bytes.substr(12)});
}

std::size_t Story::count(std::uint32_t type, std::uint32_t do_flag) const
{
    return static_cast<std::size_t>(
        std::count_if(requests.begin(), requests.end(), [=](const Sent &request) {
            return request.type == type && request.do_flag == do_flag;
        }));
}

bool Story::sent(std::uint32_t type, std::uint32_t do_flag, std::size_t offset,
                 std::string_view text) const
{
    return std::any_of(requests.begin(), requests.end(), [=](const Sent &request) {
        return request.type == type && request.do_flag == do_flag && request.text(offset) == text;
    });
}

} // namespace aaanc::test::model
