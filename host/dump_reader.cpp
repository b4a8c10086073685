#include "dump_reader.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "hex.hpp"
#include "input_error.hpp"

namespace aaanc
{

namespace
{

constexpr std::string_view kBlanks = " \t\r";

struct Line {
    std::size_t number; // 1-based
    std::string_view text;
};

// A line of a dump with offsets.
struct OffsetLine {
    std::size_t offset;
    bool certain;          // no other form has lines like this
    std::string_view rest; // the digits
};

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

// Cuts the next word off `text`; empty at the end.
std::string_view nextWord(std::string_view &text)
{
    text = trimmed(text);
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word;
}

// The lines that have something in them.
std::vector<Line> linesOf(std::string_view text)
{
    std::vector<Line> lines;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = text.find('\n');
        const std::string_view line = trimmed(text.substr(0, end));
        if (!line.empty() && line.front() != '#') {
            lines.push_back({number, line});
        }
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

// None for a line without an offset.
std::optional<OffsetLine> splitOffset(std::string_view line)
{
    constexpr std::size_t kFewestDigits = 4;
    constexpr std::size_t kMostDigits = 8;
    std::string_view rest = line;
    std::string_view word = nextWord(rest);
    const bool colon = word.ends_with(':');
    word.remove_suffix(colon ? 1 : 0);
    word.remove_prefix(word.starts_with("0x") ? 2 : 0);
    OffsetLine split{0, colon, {}};
    const char *end = word.data() + word.size();
    if (word.size() < kFewestDigits || word.size() > kMostDigits ||
        std::from_chars(word.data(), end, split.offset, 16).ptr != end) {
        return std::nullopt;
    }
    const bool gap = rest.starts_with("  ");
    rest = trimmed(rest);
    split.certain |= gap && rest.ends_with('|');
    // The text at the right: xxd has two blanks before it, hexdump -C bars around
    // it, others three blanks or more.
    std::size_t right = std::min(rest.find_first_of("|>#"), rest.find("   "));
    if (colon) {
        right = std::min(right, rest.find("  "));
    }
    split.rest = trimmed(rest.substr(0, right));
    return split;
}

class DumpReader
{
public:
    DumpReader(const std::string &name, std::string_view text) : name_(name), lines_(linesOf(text))
    {
    }

    Dump run()
    {
        if (hasOffsets()) {
            readOffsetLines();
        } else {
            readWords();
        }
        if (dump_.bytes.empty()) {
            line_ = 0;
            fail("there are no bytes in it");
        }
        return std::move(dump_);
    }

private:
    // Whether all lines begin with the number of bytes before them, which happens
    // by chance in hardly any other dump.
    [[nodiscard]] bool hasOffsets() const
    {
        std::size_t count = 0;
        std::size_t lines = 0;
        bool repeated = false;
        for (const Line &line : lines_) {
            if (line.text == "*") {
                repeated = true;
                continue;
            }
            std::optional<OffsetLine> split = splitOffset(line.text);
            if (!split) {
                return false;
            }
            if (split->certain) {
                return true;
            }
            if (split->offset != count && !(repeated && split->offset > count)) {
                return false;
            }
            repeated = false;
            count = split->offset;
            bool pairs = true;
            while (!split->rest.empty()) {
                const std::string_view word = nextWord(split->rest);
                pairs = pairs && word.size() == 2;
                count += word.size() / 2;
            }
            ++lines;
            if (!pairs) {
                return false;
            }
        }
        return count != 0 && (lines > 1 || hasGap(lines_.front().text));
    }

    static bool hasGap(std::string_view line)
    {
        nextWord(line);
        return line.starts_with("  ");
    }

    void readOffsetLines()
    {
        Bytes above; // the bytes of the last line
        bool repeated = false;
        for (const Line &line : lines_) {
            line_ = line.number;
            if (line.text == "*") {
                repeated = true;
                continue;
            }
            const std::optional<OffsetLine> split = splitOffset(line.text);
            if (!split) {
                fail("the line begins with no offset, other than those above");
            }
            if (repeated) {
                repeat(above, split->offset);
            }
            if (split->offset != dump_.bytes.size()) {
                fail(fmt::format("the line says that {} bytes come before it; there are {}",
                                 split->offset, dump_.bytes.size()));
            }
            repeated = false;
            above.clear();
            for (std::string_view rest = split->rest; !rest.empty();) {
                appendHex(above, nextWord(rest));
            }
            append(above, 1);
        }
        if (repeated) {
            fail("behind * a line with an offset is missing");
        }
    }

    void repeat(const Bytes &above, std::size_t end)
    {
        const std::size_t begin = dump_.bytes.size();
        if (above.empty() || end < begin || (end - begin) % above.size() != 0) {
            fail("* does not lead from the line above it to this offset");
        }
        append(above, (end - begin) / above.size());
    }

    void readWords()
    {
        bool named = false; // "parameter" has been read
        for (const Line &line : lines_) {
            line_ = line.number;
            std::string_view rest = line.text.substr(0, line.text.find('#'));
            for (std::string_view word = nextWord(rest); !word.empty(); word = nextWord(rest)) {
                if (word == "object" && !dump_.object && !named && dump_.bytes.empty()) {
                    dump_.object.emplace();
                } else if (word == "parameter" && !named) {
                    if (dump_.object) {
                        std::swap(*dump_.object, dump_.bytes);
                    } else if (!dump_.bytes.empty()) {
                        fail("bytes before \"parameter\", but no \"object\"");
                    }
                    named = true;
                } else {
                    readHex(word);
                }
            }
        }
        if (dump_.object && !named) {
            fail("\"parameter\" is missing");
        }
    }

    // HEX or HEX*N
    void readHex(std::string_view word)
    {
        std::size_t times = 1;
        if (const std::size_t star = word.find('*'); star != std::string_view::npos) {
            const std::string_view count = word.substr(star + 1);
            const char *end = count.data() + count.size();
            const auto [stop, error] = std::from_chars(count.data(), end, times);
            if (count.empty() || stop != end || error != std::errc()) {
                fail("behind * stands how many times; ** is a byte that was hidden "
                     "(--show-keys shows it)");
            }
            word = word.substr(0, star);
        }
        Bytes bytes;
        appendHex(bytes, word);
        append(bytes, times);
    }

    void appendHex(Bytes &bytes, std::string_view word)
    {
        std::vector<char> decoded(word.size() / 2);
        if (word.empty() || !decodeHex(word, decoded)) {
            fail(word.find('*') != std::string_view::npos
                     ? "** is a byte that was hidden; --show-keys shows it"
                     : "a word that is no pairs of hexadecimal digits");
        }
        for (const char byte : decoded) {
            bytes.push_back(static_cast<std::byte>(byte));
        }
    }

    void append(const Bytes &bytes, std::size_t times)
    {
        if (bytes.empty()) {
            return;
        }
        if (times > (kMaxPacket - dump_.bytes.size()) / bytes.size()) {
            fail(fmt::format("more than {} bytes, the most that a request has", kMaxPacket));
        }
        for (; times > 0; --times) {
            dump_.bytes.insert(dump_.bytes.end(), bytes.begin(), bytes.end());
        }
    }

    [[noreturn]] void fail(const std::string &message) const
    {
        throw InputError(name_, line_, "", message);
    }

    const std::string &name_;
    std::vector<Line> lines_;
    std::size_t line_ = 0; // under way
    Dump dump_;
};

} // namespace

Dump readDump(const std::string &name, std::string_view text)
{
    return DumpReader(name, text).run();
}

} // namespace aaanc
