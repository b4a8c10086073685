// What is known of the terminal that an output goes to, if it is one.
#pragma once

#include <cstddef>
#include <cstdio>

namespace aaanc
{

bool isTerminal(std::FILE *output);
// A terminal that shows colours, whose user has not said NO_COLOR.
bool wantsColours(std::FILE *output);
// In characters; 0 for any, as in a file.
std::size_t widthOf(std::FILE *output);

} // namespace aaanc
