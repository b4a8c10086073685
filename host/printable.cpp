#include "printable.hpp"

#include <cstdint>

#include <fmt/format.h>

namespace aaanc
{

namespace
{

// Bytes of the UTF-8 character that `text` begins with; 0 if it is none.
std::size_t characterSize(std::string_view text)
{
    const auto first = static_cast<std::uint8_t>(text.front());
    const std::size_t size = first < 0x80   ? 1
                             : first < 0xc2 ? 0
                             : first < 0xe0 ? 2
                             : first < 0xf0 ? 3
                             : first < 0xf5 ? 4
                                            : 0;
    if (size == 0 || size > text.size()) {
        return 0;
    }
    std::uint32_t code = size == 1 ? first : first & (0xffU >> (size + 1));
    for (std::size_t i = 1; i < size; ++i) {
        const auto next = static_cast<std::uint8_t>(text[i]);
        if ((next & 0xc0U) != 0x80U) {
            return 0;
        }
        code = code << 6U | (next & 0x3fU);
    }
    constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xd800 && code < 0xe000;
    return code < kSmallest[size] || surrogate || code > 0x10ffff ? 0 : size;
}

bool isControl(std::string_view character)
{
    const auto first = static_cast<std::uint8_t>(character.front());
    const bool c1 = first == 0xc2 && static_cast<std::uint8_t>(character.back()) < 0xa0;
    return first < 0x20 || first == 0x7f || c1;
}

} // namespace

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const std::size_t size = characterSize(text);
        const std::string_view character = text.substr(0, size == 0 ? 1 : size);
        if (size == 0 || isControl(character)) {
            for (const char byte : character) {
                result += fmt::format("\\x{:02x}", static_cast<std::uint8_t>(byte));
            }
        } else if (character == "\\") {
            result += "\\\\";
        } else {
            result += character;
        }
        text.remove_prefix(character.size());
    }
    return result;
}

} // namespace aaanc
