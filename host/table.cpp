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

std::size_t longestWord(std::string_view text)
{
    std::size_t longest = 0;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        longest = std::max(longest, characters(word));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
    }
    return longest;
}

// The most that `measure` says of a cell of each column, its title included if wanted.
template <typename Measure>
std::vector<std::size_t> mostOf(const Table &table, Measure measure, bool with_titles)
{
    std::vector<std::size_t> most(table.titles.size());
    for (std::size_t i = 0; i < most.size(); ++i) {
        if (with_titles) {
            most[i] = std::max(most[i], measure(table.titles[i]));
        }
        for (const auto &row : table.rows) {
            most[i] = std::max(most[i], measure(row[i]));
        }
    }
    return most;
}

// Makes the widest columns narrower, none below its `least`, until all have `width`.
void narrow(std::vector<std::size_t> &widths, std::size_t width,
            const std::vector<std::size_t> &least)
{
    std::size_t total = std::accumulate(widths.begin(), widths.end(), std::size_t{0});
    for (; total > width; --total) {
        std::size_t *widest = nullptr;
        for (std::size_t i = 0; i < widths.size(); ++i) {
            if (widths[i] > std::max(least[i], kNarrowest) &&
                (widest == nullptr || widths[i] > *widest)) {
                widest = &widths[i];
            }
        }
        if (widest == nullptr) {
            return;
        }
        --*widest;
    }
}

// Where it is too narrow for whole words, titles are broken first.
std::vector<std::size_t> columnWidths(const Table &table, std::size_t width)
{
    std::vector<std::size_t> widths = mostOf(table, characters, true);
    const std::size_t gaps = kGap * (widths.size() - 1);
    if (width != 0) {
        const std::size_t left = width > gaps ? width - gaps : 0;
        narrow(widths, left, mostOf(table, longestWord, true));
        narrow(widths, left, mostOf(table, longestWord, false));
        narrow(widths, left, std::vector<std::size_t>(widths.size()));
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
