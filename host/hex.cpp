#include "hex.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>

#include <fmt/format.h>

namespace aaanc
{

bool decodeHex(std::string_view text, std::span<char> out)
{
    const auto is_digit = [](unsigned char digit) { return std::isxdigit(digit) != 0; };
    if (text.size() % 2 != 0 || text.size() / 2 > out.size() ||
        !std::ranges::all_of(text, is_digit)) {
        return false;
    }
    for (std::size_t i = 0; i < text.size() / 2; ++i) {
        std::uint8_t byte = 0;
        std::from_chars(text.data() + 2 * i, text.data() + 2 * i + 2, byte, 16);
        out[i] = static_cast<char>(byte);
    }
    if (text.size() / 2 < out.size()) {
        out[text.size() / 2] = '\0';
    }
    return true;
}

namespace
{

std::string digits(std::byte byte, bool hidden)
{
    return hidden ? "**" : fmt::format("{:02x}", std::to_integer<unsigned>(byte));
}

} // namespace

std::string hexDump(std::span<const std::byte> bytes, std::string_view indent,
                    const std::function<bool(std::size_t)> &is_hidden)
{
    constexpr std::size_t kPerLine = 16;
    std::string dump;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i % kPerLine == 0) {
            dump += fmt::format("{}{}{:04x} ", i != 0 ? "\n" : "", indent, i);
        }
        dump += " " + digits(bytes[i], is_hidden(i));
    }
    return dump + "\n";
}

std::string hexText(std::span<const std::byte> bytes,
                    const std::function<bool(std::size_t)> &is_hidden)
{
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text += digits(bytes[i], is_hidden(i));
    }
    return text;
}

} // namespace aaanc
