// What the targets that read texts share.
#pragma once

#include <string>

#include "bytes.hpp"
#include "schema.hpp"

namespace aaanc::test::fuzz
{

const Schema &schema();
// All that is left, as it is.
std::string textOf(Bytes bytes);
// No control characters.
bool isOneLine(const std::string &text);
// What is wrong with an error: it names the file and a line that `text` has, and
// is one line itself.
std::string errorFinding(const std::string &what, const std::string &name, const std::string &text);

} // namespace aaanc::test::fuzz
