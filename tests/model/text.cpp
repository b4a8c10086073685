#include "text.hpp"

#include "../harness/trace_text.hpp"

namespace aaanc::test::model
{
std::string untilNul(const std::string &text)
{
    return text.substr(0, text.find('\0'));
}

std::string cut(const std::string &text, std::size_t count)
{
    return text.substr(0, count);
}

std::string quoted(const std::optional<std::string> &text)
{
    std::string line;
    appendQuoted(line, text ? text->c_str() : nullptr);
    return line;
}

std::string hex(std::string_view bytes)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string result;
    result.reserve(2 * bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        result += kDigits[byte >> 4U];
        result += kDigits[byte & 15U];
    }
    return result;
}

std::string shown(const std::optional<std::string> &text)
{
    return text.value_or("(null)");
}

std::string shown(std::uint32_t number)
{
    return std::to_string(static_cast<std::int32_t>(number));
}

std::string say(std::string_view format, std::initializer_list<std::string> arguments)
{
    std::string result;
    const auto *next = arguments.begin();
    for (std::size_t at = 0; at < format.size(); ++at) {
        if (format[at] == '%') {
            result += *next++;
            ++at;
        } else {
            result += format[at];
        }
    }
    return result;
}

} // namespace aaanc::test::model
