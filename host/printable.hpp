// Texts from outside, made safe for a terminal.
#pragma once

#include <string>
#include <string_view>

namespace aaanc
{

// Control characters and what is not UTF-8 become \xHH, a backslash \\.
std::string printable(std::string_view text);

} // namespace aaanc
