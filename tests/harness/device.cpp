#include "device.hpp"

namespace aaanc::test
{

namespace
{

// The offset of the first `wanted` outside quotes at or behind `from`.
std::size_t findUnquoted(std::string_view text, char wanted, std::size_t from)
{
    char quote = '\0';
    for (std::size_t at = from; at < text.size(); ++at) {
        const char c = text[at];
        if (quote != '\0')
            quote = c == quote ? '\0' : quote;
        else if (c == wanted)
            return at;
        else if (c == '\'' || c == '"')
            quote = c;
    }
    return std::string_view::npos;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

} // namespace

std::optional<std::size_t> nodeNameOffset(std::string_view xpath)
{
    std::size_t last = 0;
    for (std::size_t at = findUnquoted(xpath, '/', 0); at != std::string_view::npos;
         at = findUnquoted(xpath, '/', at + 1))
        last = at;
    if (last == 0)
        return std::nullopt;
    return last + 1;
}

std::optional<KeyPlace> findKey(std::string_view xpath, std::string_view list, std::string_view key)
{
    std::size_t node = 0;
    while (node != std::string_view::npos) {
        const std::size_t start = node + 1;
        node = findUnquoted(xpath, '/', start);
        const std::size_t end = node == std::string_view::npos ? xpath.size() : node;
        std::size_t predicate = findUnquoted(xpath.substr(0, end), '[', start);
        if (predicate == std::string_view::npos || xpath.substr(start, predicate - start) != list)
            continue;
        while (predicate != std::string_view::npos) {
            // [key='value']
            const std::size_t name = predicate + 1;
            const std::size_t value = name + key.size() + 2;
            if (xpath.substr(name, key.size()) == key && value < end && xpath[value - 2] == '=' &&
                (xpath[value - 1] == '\'' || xpath[value - 1] == '"')) {
                const std::size_t close = xpath.find(xpath[value - 1], value);
                if (close == std::string_view::npos)
                    return std::nullopt;
                return KeyPlace{value, close - value};
            }
            predicate = findUnquoted(xpath.substr(0, end), '[', name);
        }
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::string> unhex(std::string_view text, std::size_t size)
{
    if (text.size() % 2 != 0 || text.size() / 2 > size)
        return std::nullopt;
    std::string bytes;
    bytes.reserve(text.size() / 2);
    for (std::size_t at = 0; at < text.size(); at += 2) {
        const int high = hexDigit(text[at]);
        const int low = hexDigit(text[at + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

std::string errorText(std::int32_t code)
{
    switch (code) {
    case 0:
        return "Operation succeeded";
    case 3:
        return "Item not found";
    case 4:
        return "Sysrepo-internal error";
    case 7:
        return "The peer disconnected";
    case 13:
        return "The operation failed";
    case 19:
        return "Timeout has expired";
    default:
        return "error " + std::to_string(code);
    }
}

} // namespace aaanc::test
