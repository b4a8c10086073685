// Texts as C sees them, and as a trace writes them.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace aaanc::test::model
{

// Up to the first NUL.
std::string untilNul(const std::string &text);

// The first `count` bytes.
std::string cut(const std::string &text, std::size_t count);

// As a trace line shows it: in double quotes, or null.
std::string quoted(const std::optional<std::string> &text);

// Two lower-case digits a byte.
std::string hex(std::string_view bytes);

// What printf makes of %s and of %d.
std::string shown(const std::optional<std::string> &text);
std::string shown(std::uint32_t number);

// `format` with each %s, %d and %p replaced by the next of `arguments`.
std::string say(std::string_view format, std::initializer_list<std::string> arguments);

} // namespace aaanc::test::model
