// Reads tables of the pages in docs.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace aaanc::test
{

// Of "| one | two |".
inline std::vector<std::string> cellsOf(std::string_view row)
{
    std::vector<std::string> cells;
    for (std::size_t end = 0; (end = row.find('|', 1)) != std::string_view::npos;) {
        std::string_view cell = row.substr(1, end - 1);
        cell.remove_prefix(std::min(cell.find_first_not_of(' '), cell.size()));
        cells.emplace_back(cell.substr(0, cell.find_last_not_of(' ') + 1)); // npos + 1 is 0
        row.remove_prefix(end);
    }
    return cells;
}

inline std::string withoutQuotes(std::string text)
{
    std::erase(text, '`');
    return text;
}

} // namespace aaanc::test
