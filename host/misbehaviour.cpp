#include "misbehaviour.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <span>
#include <stdexcept>

#include <fmt/format.h>

#include "messages.hpp"
#include "printable.hpp"

namespace aaanc
{

namespace
{

using enum Manner;

struct MannerName {
    std::string_view name;
    Manner manner;
    std::string_view argument; // what follows the name, for a reader
    std::string_view help;
};

constexpr MannerName kManners[] = {
    {"refuse", Refuse, "CODE", "answer CODE, a number but 0"},
    {"late", Late, "SECONDS", "the right answer, that late"},
    {"wrong-length", WrongLength, "", "an answer whose length field does not fit"},
    {"short", Short, "", "an answer shorter than its header"},
    {"long", Long, "", "an answer of 2048 bytes"},
    {"empty", Empty, "", "an answer of no bytes"},
    {"null", Null, "", "an answer of null data, said to be 8 bytes"},
    {"undecodable", Undecodable, "", "a packet that is no answer"},
    {"silent", Silent, "", "no answer"},
    {"close", Close, "", "close the connection after the request"},
    {"close-before", CloseBefore, "", "close the connection before the request is read"},
    {"away", Away, "", "nobody listens, from this request on"},
};

// Takes what comes before the first of `end`, or all, off `text`; without blanks around it.
std::string_view takeUntil(std::string_view &text, char end)
{
    constexpr std::string_view kBlanks = " \t";
    const std::size_t found = text.find(end);
    std::string_view taken = text.substr(0, found);
    text.remove_prefix(found == std::string_view::npos ? text.size() : found + 1);
    taken.remove_prefix(std::min(taken.find_first_not_of(kBlanks), taken.size()));
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return taken.substr(0, taken.find_last_not_of(kBlanks) + 1);
}

template <typename Number> Number parseNumber(std::string_view text, std::string_view what)
{
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
        throw std::invalid_argument(fmt::format("\"{}\" is no {}", printable(text), what));
    }
    return number;
}

void parseCondition(std::string_view text, Misbehaviour &rule)
{
    const std::string_view subject = takeUntil(text, ' ');
    if (subject == "request") {
        rule.request = parseNumber<std::size_t>(text, "number of a request");
        if (*rule.request == 0) {
            throw std::invalid_argument("requests are counted from 1");
        }
    } else if (subject == "type") {
        rule.type = parseNumber<std::uint32_t>(text, "message type");
        if (findMessage(*rule.type) == nullptr) {
            throw std::invalid_argument(fmt::format("no message is of type {}", *rule.type));
        }
    } else {
        throw std::invalid_argument(
            fmt::format("what comes before the colon is \"request N\" or \"type T\", not \"{}\"",
                        printable(subject)));
    }
}

std::chrono::milliseconds parseDelay(std::string_view text)
{
    constexpr double kLongest = 86400;
    const auto seconds = parseNumber<double>(text, "number of seconds");
    if (!(seconds >= 0 && seconds <= kLongest)) {
        throw std::invalid_argument("a delay is 0 to 86400 seconds");
    }
    return std::chrono::round<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
}

void parseManner(std::string_view text, Misbehaviour &rule)
{
    rule.text = text;
    const std::string_view name = takeUntil(text, ' ');
    const auto *found = std::ranges::find(kManners, name, &MannerName::name);
    if (found == std::end(kManners) && (name == "request" || name == "type")) {
        throw std::invalid_argument(fmt::format("\"{}\" lacks the colon between request or type "
                                                "and manner, as in \"request 3: silent\"",
                                                printable(rule.text)));
    }
    if (found == std::end(kManners)) {
        throw std::invalid_argument(fmt::format("\"{}\" is no way to misbehave", printable(name)));
    }
    rule.manner = found->manner;
    if (found->argument.empty() != text.empty()) {
        throw std::invalid_argument(
            found->argument.empty() ? fmt::format("nothing comes behind \"{}\"", name)
                                    : fmt::format("\"{}\" lacks its {}", name, found->argument));
    }
    if (rule.manner == Refuse) {
        rule.code = parseNumber<std::uint32_t>(text, "code");
        if (rule.code == 0) {
            throw std::invalid_argument("0 is no refusal");
        }
    } else if (rule.manner == Late) {
        rule.delay = parseDelay(text);
    }
}

Bytes bytesOf(std::initializer_list<std::uint32_t> words)
{
    Bytes bytes(words.size() * sizeof(std::uint32_t));
    std::memcpy(bytes.data(), words.begin(), bytes.size());
    return bytes;
}

std::uint32_t resultOf(const Parameter &reply)
{
    std::uint32_t result = 0;
    std::memcpy(&result, reply.data.data(), std::min(sizeof result, reply.data.size()));
    return result;
}

Parameter parameterOf(Bytes data)
{
    return {0, static_cast<std::uint32_t>(data.size()), std::move(data)};
}

} // namespace

Misbehaviour parseMisbehaviour(std::string_view text)
{
    Misbehaviour rule;
    if (text.find(':') != std::string_view::npos) {
        parseCondition(takeUntil(text, ':'), rule);
    }
    parseManner(takeUntil(text, '\0'), rule);
    if (rule.type && (rule.manner == CloseBefore || rule.manner == Away)) {
        throw std::invalid_argument(
            fmt::format("\"{}\" cannot know the type of the request", rule.text));
    }
    return rule;
}

std::string mannersHelp()
{
    std::string help;
    for (const MannerName &manner : kManners) {
        help += fmt::format("  {:<14} {}\n", fmt::format("{} {}", manner.name, manner.argument),
                            manner.help);
    }
    return help;
}

bool isLookedAt(Manner manner)
{
    constexpr Manner kUnseen[] = {Refuse, Silent, Close, CloseBefore, Away};
    return std::ranges::find(kUnseen, manner) == std::end(kUnseen);
}

Bytes packSpoilt(const Parameter &reply, Manner manner)
{
    constexpr std::uint32_t kHeader = 8;
    constexpr std::uint32_t kLongSize = 2048;
    const std::uint32_t result = resultOf(reply);
    switch (manner) {
    case WrongLength:
        return packReply(parameterOf(bytesOf({result, 4})));
    case Short:
        return packReply(parameterOf(bytesOf({result})));
    case Long: {
        Bytes data = bytesOf({result, kLongSize - kHeader});
        data.resize(kLongSize, std::byte{0xff});
        return packReply(parameterOf(std::move(data)));
    }
    case Empty:
        return packReply({});
    case Null:
        return packReply({0, kHeader, {}});
    case Undecodable:
        return bytesOf({result});
    default:
        return packReply(reply);
    }
}

} // namespace aaanc
