#include <array>
#include <charconv>
#include <limits>
#include <map>
#include <optional>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "input_error.hpp"
#include "printable.hpp"
#include "sysrepo.h"
#include "trace.hpp"
#include "xpath.hpp"

namespace aaanc
{

namespace
{

constexpr std::string_view kNull = "\\N";
constexpr std::string_view kOldValue = "old=";
constexpr std::string_view kNewValue = " new=";

// What the leaves below a subtree hold, by name.
using LeafKinds = std::map<std::string, DataKind, std::less<>>;

LeafKinds leafKinds(const Schema &schema, const std::string &subtree)
{
    LeafKinds kinds;
    const lysc_node *top = schema.find(subtree);
    const auto add = [](lysc_node *node, void *data, ly_bool *) {
        if (isLeaf(node)) {
            static_cast<LeafKinds *>(data)->emplace(node->name, dataKind(typeOf(node)));
        }
        return LY_SUCCESS;
    };
    if (top != nullptr) {
        lysc_tree_dfs_full(top, add, &kinds);
    }
    return kinds;
}

std::uint32_t largestOf(std::uint32_t type)
{
    return type == SR_UINT8_T    ? std::numeric_limits<std::uint8_t>::max()
           : type == SR_UINT16_T ? std::numeric_limits<std::uint16_t>::max()
                                 : std::numeric_limits<std::uint32_t>::max();
}

class TraceReader
{
public:
    TraceReader(const Schema &schema, std::string name) : schema_(schema)
    {
        trace_.file = std::move(name);
    }

    Trace run(std::string_view text)
    {
        while (!text.empty()) {
            const std::size_t end = text.find('\n');
            ++line_;
            readLine(text.substr(0, end));
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        }
        return std::move(trace_);
    }

private:
    void readLine(std::string_view line)
    {
        const std::size_t last = line.find_last_not_of(" \t\r");
        line = line.substr(0, last == std::string_view::npos ? 0 : last + 1);
        xpath_.clear();
        if (line.empty() || line.front() == '#') {
            return;
        }
        std::string unescaped(line);
        std::erase(unescaped, '\\');
        if (printable(unescaped) != unescaped) {
            fail("a byte that is no printable UTF-8; it is written \\xHH");
        }
        if (skip(line, "callback ")) {
            readCallback(line);
        } else if (skip(line, "change ")) {
            readChange(line);
        } else {
            fail("neither a callback nor a change nor a comment (#)");
        }
    }

    void readCallback(std::string_view line)
    {
        constexpr std::string_view kEvent = " event ";
        const std::size_t split = line.rfind(kEvent);
        if (split == std::string_view::npos) {
            fail("a callback is \"callback XPATH event N\"");
        }
        const std::string subtree = unescape(line.substr(0, split));
        const std::uint32_t event = number(line.substr(split + kEvent.size()), "event");
        const auto [known, is_new] = kinds_.try_emplace(subtree);
        if (is_new) {
            known->second = leafKinds(schema_, subtree);
        }
        current_kinds_ = &known->second;
        trace_.callbacks.push_back({line_, subtree, event, {}});
    }

    void readChange(std::string_view line)
    {
        if (trace_.callbacks.empty()) {
            fail("a change before the first callback");
        }
        Change change;
        const std::string_view operation = line.substr(0, line.find(' '));
        change.oper = readOperation(operation);
        line.remove_prefix(std::min(line.size(), operation.size() + 1));
        const std::size_t split = line.find(kNewValue);
        if (!skip(line, kOldValue) || split == std::string_view::npos) {
            fail("a change is \"change OPERATION old=VALUE new=VALUE\"");
        }
        const std::string_view old_value = line.substr(0, split - kOldValue.size());
        const std::string_view new_value = line.substr(split - kOldValue.size() + kNewValue.size());
        if (old_value != "-" && new_value.find(kNewValue) != std::string_view::npos) {
            fail("two times \" new=\"; a blank inside of a value may be written \\x20");
        }
        change.old_value = readValue(old_value);
        change.new_value = readValue(new_value);
        trace_.callbacks.back().changes.push_back(std::move(change));
    }

    std::uint32_t readOperation(std::string_view word)
    {
        constexpr std::array<std::string_view, 4> kNames = {"CREATED", "MODIFIED", "DELETED",
                                                            "MOVED"};
        for (std::uint32_t i = 0; i < kNames.size(); ++i) {
            if (kNames[i] == word) {
                return i;
            }
        }
        if (word.empty() || word.front() < '0' || word.front() > '9') {
            fail(fmt::format("an operation is {} or a number", fmt::join(kNames, ", ")));
        }
        return number(word, "operation");
    }

    std::optional<Value> readValue(std::string_view text)
    {
        if (text == "-") {
            return std::nullopt;
        }
        const std::size_t first = findBar(text, 0);
        const std::size_t second = findBar(text, first + 1);
        if (first == text.size() || second == text.size() ||
            findBar(text, second + 1) != text.size()) {
            fail("a value is XPATH|TYPE|TEXT, or - for none; a bar inside of it is written \\|");
        }
        Value value;
        if (const std::string_view xpath = text.substr(0, first); xpath != kNull) {
            value.xpath = unescape(xpath);
            xpath_ = *value.xpath;
        }
        value.type = number(text.substr(first + 1, second - first - 1), "type");
        value.text = readText(value.type, text.substr(second + 1));
        checkKind(value);
        return value;
    }

    std::optional<std::string> readText(std::uint32_t type, std::string_view text)
    {
        switch (dataKind(type)) {
        case DataKind::None:
            if (!text.empty()) {
                fail("a list or a container has no text");
            }
            return "";
        case DataKind::Bool:
            if (text != "true" && text != "false" && text != "1" && text != "0") {
                fail("a value of type 9 is true or false");
            }
            return text == "true" || text == "1" ? "true" : "false";
        case DataKind::Number: {
            const std::uint32_t value = number(text, "value");
            if (value > largestOf(type)) {
                fail("the value is out of the range of its type");
            }
            return std::to_string(value);
        }
        default:
            return text == kNull ? std::nullopt : std::make_optional(unescape(text));
        }
    }

    void checkKind(const Value &value)
    {
        constexpr std::array<std::string_view, 4> kNames = {"nothing", "a truth value", "a number",
                                                            "a text"};
        const char *name = value.xpath ? xpathNodeName(value.xpath->c_str()) : nullptr;
        const auto known =
            name != nullptr ? current_kinds_->find(std::string_view(name)) : current_kinds_->end();
        if (known == current_kinds_->end()) {
            return;
        }
        const DataKind kind = dataKind(value.type);
        if (kind != known->second) {
            fail(fmt::format("this leaf holds {}; type {} holds {}",
                             kNames[static_cast<std::size_t>(known->second)], value.type,
                             kNames[static_cast<std::size_t>(kind)]));
        }
    }

    // The first bar from `at` on that is not escaped, else the end.
    static std::size_t findBar(std::string_view text, std::size_t at)
    {
        while (at < text.size() && text[at] != '|') {
            at += text[at] == '\\' ? 2U : 1U;
        }
        return std::min(at, text.size());
    }

    std::string unescape(std::string_view text)
    {
        std::string plain;
        while (!text.empty()) {
            if (!skip(text, "\\")) {
                plain += text.front();
                text.remove_prefix(1);
            } else if (skip(text, "x")) {
                const char *end = text.data() + std::min<std::size_t>(text.size(), 2);
                std::uint8_t byte = 0;
                if (text.size() < 2 || std::from_chars(text.data(), end, byte, 16).ptr != end) {
                    fail("\\x takes two hexadecimal digits");
                }
                plain += static_cast<char>(byte);
                text.remove_prefix(2);
            } else {
                if (text.empty() ||
                    (text.front() != '\\' && text.front() != '"' && text.front() != '|')) {
                    fail("a backslash begins \\\\, \\\", \\| or \\xHH, or is \\N alone");
                }
                plain += text.front();
                text.remove_prefix(1);
            }
        }
        return plain;
    }

    // Decimal, or hexadecimal behind 0x.
    std::uint32_t number(std::string_view text, std::string_view what)
    {
        const int base = skip(text, "0x") ? 16 : 10;
        std::uint32_t value = 0;
        const char *end = text.data() + text.size();
        const auto [stop, error] = std::from_chars(text.data(), end, value, base);
        if (text.empty() || stop != end || error != std::errc()) {
            fail(fmt::format("the {} is no number from 0 to 4294967295", what));
        }
        return value;
    }

    static bool skip(std::string_view &text, std::string_view prefix)
    {
        const bool found = text.starts_with(prefix);
        text.remove_prefix(found ? prefix.size() : 0);
        return found;
    }

    [[noreturn]] void fail(const std::string &message) const
    {
        throw InputError(trace_.file, line_, xpath_, message);
    }

    const Schema &schema_;
    Trace trace_;
    std::map<std::string, LeafKinds> kinds_;   // by subtree
    const LeafKinds *current_kinds_ = nullptr; // of the callback under way
    std::size_t line_ = 0;
    std::string xpath_; // of the value under way, for errors
};

} // namespace

Trace readTrace(const Schema &schema, const std::string &name, std::string_view text)
{
    return TraceReader(schema, name).run(text);
}

} // namespace aaanc
