// The tables of docs/wire-format.md, held against the table of requests that all of
// aaanc works from, and against the leaves of the module.
#include <cctype>
#include <map>
#include <set>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "messages.hpp"
#include "page.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

// The rows of tables that begin with a number, by the heading above them.
using Rows = std::vector<std::vector<std::string>>;
using Page = std::map<std::string, Rows>;

Page readPage()
{
    Page page;
    std::string heading;
    for (const std::string &line : lines(readText(AAANC_DOCS "/wire-format.md"))) {
        if (line.starts_with('#')) {
            heading = withoutQuotes(line.substr(line.find(' ') + 1));
        } else if (line.starts_with("| ") && std::isdigit(line.at(2)) != 0) {
            page[heading].push_back(cellsOf(line));
        }
    }
    return page;
}

// Of "`one`, `two` as well" the words one and two.
std::vector<std::string> quotedIn(std::string_view text)
{
    std::vector<std::string> words;
    for (std::size_t begin = 0; (begin = text.find('`')) != std::string_view::npos;) {
        const std::size_t end = text.find('`', begin + 1);
        if (end == std::string_view::npos) {
            ADD_FAILURE() << "a quote is not closed: " << text;
            break;
        }
        words.emplace_back(text.substr(begin + 1, end - begin - 1));
        text.remove_prefix(end + 1);
    }
    return words;
}

struct PageField {
    std::size_t offset;
    std::string size;
    std::string name;
    std::string leaf;
};

// The fields of a record; of an array of records ("4 × 40") those of each.
std::vector<PageField> fieldsOf(const Page &page, const std::string &record, std::size_t size)
{
    constexpr std::string_view kTimes = " × ";
    const auto found = page.find(fmt::format("{}, {} byte{}", record, size, size == 1 ? "" : "s"));
    if (found == page.end()) {
        ADD_FAILURE() << "there is no " << record << " of " << size << " bytes";
        return {};
    }
    std::vector<PageField> fields;
    for (const auto &cells : found->second) {
        const PageField field{std::stoul(cells.at(0)), cells.at(1), withoutQuotes(cells.at(2)),
                              cells.at(3)};
        const std::size_t times = field.size.find(kTimes);
        if (times == std::string::npos) {
            fields.push_back(field);
            continue;
        }
        const std::size_t count = std::stoul(field.size);
        const std::size_t each = std::stoul(field.size.substr(times + kTimes.size()));
        for (std::size_t i = 0; i < count; ++i) {
            for (PageField inner : fieldsOf(page, quotedIn(cells.at(4)).at(0), each)) {
                inner.offset += field.offset + i * each;
                inner.name = fmt::format("{}[{}].{}", field.name, i, inner.name);
                fields.push_back(inner);
            }
        }
    }
    return fields;
}

// A row of the message types.
struct PageMessage {
    std::string type;
    std::string record;
    std::size_t size;
    std::string sender;
};

std::vector<PageMessage> messagesOn(const Page &page)
{
    std::vector<PageMessage> messages;
    for (const auto &cells : page.at("Message types")) {
        messages.push_back(
            {cells.at(0), withoutQuotes(cells.at(1)), std::stoul(cells.at(2)), cells.at(3)});
    }
    return messages;
}

TEST(WireFormat, IsThatOfTheRequests)
{
    const Page page = readPage();
    std::string on_page;
    for (const PageMessage &message : messagesOn(page)) {
        on_page += fmt::format("type {}, {} bytes\n", message.type, message.size);
        for (const PageField &field : fieldsOf(page, message.record, message.size)) {
            on_page += fmt::format("  {} {} {}\n", field.offset, field.size, field.name);
        }
    }
    std::string known;
    for (std::uint32_t type = 0; type <= 255; ++type) {
        if (const MessageLayout *message = findMessage(type)) {
            known += fmt::format("type {}, {} bytes\n", type, message->length);
            for (const FieldLayout &field : message->fields) {
                known += fmt::format("  {} {} {}\n", field.offset, field.size,
                                     field.kind == FieldKind::Reserved ? "reserved" : field.name);
            }
        }
    }
    EXPECT_EQ(on_page, known);
}

// The leaves that a cell names. Those of IPv6 lists go by the names of IPv4.
std::set<std::string> leavesIn(const std::string &cell)
{
    constexpr std::string_view kVersion = "Ipv4";
    std::set<std::string> leaves;
    for (std::string leaf : quotedIn(cell)) {
        leaves.insert(leaf);
        if (const std::size_t version = leaf.find(kVersion); version != std::string::npos) {
            leaves.insert(leaf.replace(version, kVersion.size(), "Ipv6"));
        }
    }
    return leaves;
}

TEST(WireFormat, NamesEachLeafOfTheModule)
{
    const std::string kRoot = "/orvek-aaa:sysAaa";
    const Page page = readPage();
    std::set<const lysc_node *> sent;
    for (const PageMessage &message : messagesOn(page)) {
        std::set<std::string> there;
        std::set<std::string> keys;
        std::set<std::string> named;
        for (const std::string &word : quotedIn(message.sender)) {
            const lysc_node *subtree = schema().find(kRoot + "/" + word);
            if (subtree == nullptr) {
                named.insert(word);
                continue;
            }
            for (const lysc_node *leaf : leavesBelow(subtree)) {
                sent.insert(leaf);
                (isKey(leaf) ? keys : there).insert(leaf->name);
            }
        }
        for (const PageField &field : fieldsOf(page, message.record, message.size)) {
            for (const std::string &leaf : leavesIn(field.leaf)) {
                named.insert(leaf);
                EXPECT_TRUE(!field.leaf.starts_with("key ") || keys.contains(leaf)) << leaf;
            }
        }
        there.merge(keys);
        EXPECT_EQ(named, there) << "type " << message.type;
    }
    for (const lysc_node *leaf : leavesBelow(schema().find(kRoot))) {
        EXPECT_TRUE(sent.contains(leaf)) << leaf->name;
    }
}

} // namespace

} // namespace aaanc::test
