#include "texts.hpp"

#include <algorithm>
#include <cstdlib>

namespace aaanc::test::fuzz
{

const Schema &schema()
{
    static const Schema loaded(AAANC_YANG);
    return loaded;
}

std::string textOf(Bytes bytes)
{
    std::string text;
    while (!bytes.empty())
        text += static_cast<char>(bytes.byte());
    return text;
}

bool isOneLine(const std::string &text)
{
    return std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

std::string errorFinding(const std::string &what, const std::string &name, const std::string &text)
{
    if (!what.starts_with(name + ":"))
        return "no file is named: " + what;
    if (!isOneLine(what))
        return "not printable: " + what;
    // XML takes a carriage return for the end of a line, too.
    const auto last = 1 + std::ranges::count(text, '\n') + std::ranges::count(text, '\r');
    const long line = std::strtol(what.c_str() + name.size() + 1, nullptr, 10);
    return line >= 1 && line <= last ? "" : "no line of the file is named: " + what;
}

} // namespace aaanc::test::fuzz
