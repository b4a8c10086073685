// Hexadecimal text.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace aaanc
{

// Decodes pairs of hexadecimal digits of either case into `out`, and puts a
// NUL behind them if there is room. False, with `out` untouched, for anything
// else and for what does not fit.
bool decodeHex(std::string_view text, std::span<char> out);

// Lines of 16 bytes, each begun with `indent` and its offset: "0000  00 05 ...",
// two lower-case digits a byte, and "**" for a byte that `is_hidden` (given its
// offset) is true of.
std::string hexDump(std::span<const std::byte> bytes, std::string_view indent,
                    const std::function<bool(std::size_t)> &is_hidden);
// The digits alone, in one line.
std::string hexText(std::span<const std::byte> bytes,
                    const std::function<bool(std::size_t)> &is_hidden);

} // namespace aaanc
