// Tables for people.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace aaanc
{

struct Table {
    std::vector<std::string> titles;
    std::vector<std::vector<std::string>> rows; // as many cells as titles, each
};

// Lines that begin with `indent`. Where they would be wider than `width`
// characters (0 for any), the widest columns become narrower and their cells
// go on in further lines, with words broken only where there is no other way, those
// of titles first: nothing is cut. The titles are bold if `coloured`.
std::string formatTable(const Table &table, std::string_view indent, std::size_t width,
                        bool coloured);

} // namespace aaanc
