// How texts stand in a trace line and in a scenario file.
#pragma once

#include <string>
#include <string_view>

namespace aaanc::test
{

// Appends `text` in double quotes; a backslash, a double quote and bytes outside
// 0x20..0x7e as \\, \" and \xHH.
void appendQuoted(std::string &line, std::string_view text);

// As above; a null pointer is the bare word null.
void appendQuoted(std::string &line, const char *text);

} // namespace aaanc::test
