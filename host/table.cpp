#include "table.hpp"

#include <algorithm>
#include <numeric>

#include <fmt/color.h>
#include <fmt/format.h>

namespace aaanc
{

namespace
{

constexpr std::size_t kGap = 2;
constexpr std::size_t kNarrowest = 4; // that a column is made

bool beginsCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
}

std::size_t characters(std::string_view text)
{
    return static_cast<std::size_t>(std::ranges::count_if(text, beginsCharacter));
}

// Bytes of the first `count` characters.
std::size_t bytesOf(std::string_view text, std::size_t count)
{
    std::size_t i = 0;
    for (; i < text.size(); ++i) {
        if (beginsCharacter(text[i]) && count-- == 0) {
            break;
        }
    }
    return i;
}

// Takes what fits into `width` off `text`, up to a blank if there is one.
std::string_view takeLine(std::string_view &text, std::size_t width)
{
    std::size_t size = bytesOf(text, width);
    std::size_t next = size;
    if (size < text.size()) {
        const std::size_t blank = text.rfind(' ', size);
        if (blank != std::string_view::npos && blank != 0) {
            size = blank;
            next = blank + 1;
        }
    }
    const std::string_view line = text.substr(0, size);
    text.remove_prefix(next);
    return line;
}

std::vector<std::size_t> columnWidths(const Table &table, std::size_t width)
{
    std::vector<std::size_t> widths;
    for (std::size_t i = 0; i < table.titles.size(); ++i) {
        std::size_t widest = characters(table.titles[i]);
        for (const auto &row : table.rows) {
            widest = std::max(widest, characters(row[i]));
        }
        widths.push_back(widest);
    }
    const std::size_t gaps = kGap * (widths.size() - 1);
    std::size_t total = std::accumulate(widths.begin(), widths.end(), gaps);
    for (; width != 0 && total > width; --total) {
        const auto widest = std::ranges::max_element(widths);
        if (*widest <= kNarrowest) {
            break;
        }
        --*widest;
    }
    return widths;
}

std::string formatRow(const std::vector<std::string> &cells, const std::vector<std::size_t> &widths,
                      std::string_view indent)
{
    std::vector<std::string_view> left(cells.begin(), cells.end());
    std::string text;
    do {
        std::string line(indent);
        for (std::size_t i = 0; i < left.size(); ++i) {
            const std::string_view cell = takeLine(left[i], widths[i]);
            line += cell;
            line.append(widths[i] - characters(cell) + kGap, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    } while (!std::ranges::all_of(left, &std::string_view::empty));
    return text;
}

} // namespace

std::string formatTable(const Table &table, std::string_view indent, std::size_t width,
                        bool coloured)
{
    const std::vector<std::size_t> widths =
        columnWidths(table, width > indent.size() ? width - indent.size() : width);
    const std::string titles = formatRow(table.titles, widths, indent);
    std::string text = coloured ? fmt::format(fmt::emphasis::bold, "{}", titles) : titles;
    for (const auto &row : table.rows) {
        text += formatRow(row, widths, indent);
    }
    return text;
}

} // namespace aaanc
