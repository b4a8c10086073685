// What the device's helper functions compute, as pure functions of their
// arguments: the fake platform and the model both answer with these.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace aaanc::test
{

// Where the last node of `xpath` starts, predicates included: behind its last
// '/' outside quotes. No value when that is the first character (a top node)
// or there is none.
std::optional<std::size_t> nodeNameOffset(std::string_view xpath);

// A key's value in an xpath: its offset and its length; the closing quote
// stands behind it.
struct KeyPlace {
    std::size_t offset = 0;
    std::size_t length = 0;
};

// The key `key` of the first node named `list`. No value when there is no such
// node or it has no such key.
std::optional<KeyPlace> findKey(std::string_view xpath, std::string_view list,
                                std::string_view key);

// Decodes pairs of hexadecimal digits, in either case; an empty text is no
// bytes. No value for anything else, and for more than `size` bytes.
std::optional<std::string> unhex(std::string_view text, std::size_t size);

// What sr_convert_hexstring_to_string() returns for a text that unhex() refuses.
inline constexpr std::int32_t kUnhexRefused = 1;

// The text of a result code: the device's words for the codes known, "error N"
// for others.
std::string errorText(std::int32_t code);

} // namespace aaanc::test
