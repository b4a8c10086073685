#include "edit.hpp"

#include "changes.hpp"

#include <algorithm>

namespace aaanc::test::model
{
namespace
{

constexpr std::uint32_t kListType = 2;
constexpr std::uint32_t kContainerType = 3;

struct Entry {
    std::string xpath;
    std::vector<Value> values; // one for each node of the schema
    int pairs = 4;
};

// [name='text'], in the quotes that the text does not hold.
std::string predicate(const std::string &name, std::string text)
{
    const char quote = text.find('\'') == std::string::npos ? '\'' : '"';
    if (quote == '"')
        std::replace(text.begin(), text.end(), '"', 'q');
    return '[' + name + '=' + quote + text + quote + ']';
}

std::vector<std::string> predicates(Random &random, const Schema &schema, const Entry &entry)
{
    const bool odd_ports = random.percent(9);
    std::vector<std::string> result;
    for (std::size_t i = 0; i < schema.nodes.size(); ++i) {
        const Node &node = schema.nodes[i];
        if (!node.is_key || random.percent(1))
            continue;
        const bool odd = odd_ports && node.content == Content::Port;
        result.push_back(
            predicate(node.name(), odd ? oddPortText(random) : keyText(entry.values[i])));
    }
    return result;
}

std::string entryXpath(Random &random, const Schema &schema, const Entry &entry)
{
    std::vector<std::string> keys = predicates(random, schema, entry);
    if (keys.size() > 1 && random.percent(8))
        std::swap(keys.front(), keys[random.below(size32(keys.size()))]);
    std::string xpath = schema.xpath;
    for (const std::string &key : keys)
        xpath += key;
    return xpath;
}

Value nodeValue(Random &random, const Node &node)
{
    Value value = randomValue(random, node.content);
    if (node.content == Content::MethodGroupName && random.percent(70))
        value.data = "g" + std::to_string(node.pair + 1);
    return value;
}

int pairsOf(Random &random, const Schema &schema, const Entry &entry)
{
    static const std::vector<int> kPairs = {0, 1, 1, 1, 1, 2, 2, 3, 4, 4};
    for (std::size_t i = 0; i < schema.nodes.size(); ++i) {
        const bool stage = schema.nodes[i].content == Content::Stage;
        if (stage && keyText(entry.values[i]) == "none" && random.percent(80))
            return 0;
    }
    return random.oneOf(kPairs);
}

// Often but for one leaf the entry before.
Entry randomEntry(Random &random, const Schema &schema, const Entry *before)
{
    Entry entry;
    if (before != nullptr && random.percent(45)) {
        entry = *before;
        const std::uint32_t which = random.below(size32(schema.nodes.size()));
        entry.values[which] = nodeValue(random, schema.nodes[which]);
    } else {
        for (const Node &node : schema.nodes)
            entry.values.push_back(nodeValue(random, node));
    }
    entry.pairs = pairsOf(random, schema, entry);
    entry.xpath = schema.is_list ? entryXpath(random, schema, entry) : schema.xpath;
    return entry;
}

Change entryNode(std::uint32_t oper, const Schema &schema, const Entry &entry)
{
    Value value;
    value.type = schema.is_list ? kListType : kContainerType;
    return makeChange(oper, valueAt(entry.xpath, value));
}

Change leafChange(Random &random, std::uint32_t oper, const Node &node, const Entry &entry,
                  const Value &value)
{
    const std::string xpath = entry.xpath + '/' + node.path;
    Change result = makeChange(oper, valueAt(xpath, value));
    if (oper == kModified)
        result.old_value = valueAt(xpath, nodeValue(random, node));
    return result;
}

// The nodes of an entry: all that it has, or some of them.
void addNodes(Random &random, std::vector<Change> &changes, std::uint32_t oper,
              const Schema &schema, const Entry &entry, std::uint32_t chance)
{
    for (std::size_t i = 0; i < schema.nodes.size(); ++i) {
        const Node &node = schema.nodes[i];
        if (node.pair < entry.pairs && random.percent(chance))
            changes.push_back(leafChange(random, oper, node, entry, entry.values[i]));
    }
}

// More groups than a method list has leaves for.
void addExtraPairs(Random &random, std::vector<Change> &changes, const Schema &schema,
                   const Entry &entry, std::uint32_t oper)
{
    std::vector<const Node *> leaves;
    for (const Node &node : schema.nodes) {
        if (node.content == Content::GroupWord || node.content == Content::MethodGroupName)
            leaves.push_back(&node);
    }
    for (std::uint32_t left = random.between(1, 5); left > 0; --left) {
        const std::uint32_t first = random.below(4) * 2;
        for (std::uint32_t i = first; i < first + 2; ++i) {
            Value value = randomValue(random, leaves[i]->content);
            if (i > first && random.percent(80))
                value.data = "x" + std::to_string(random.below(50));
            changes.push_back(leafChange(random, oper, *leaves[i], entry, value));
        }
    }
}

// What an edit does to one entry.
enum class Deed { Create, Delete, OneNode, SomeNodes, AllNodes, Mixture };

Deed randomDeed(Random &random)
{
    const std::uint32_t kind = random.below(100);
    return kind < 52   ? Deed::Create
           : kind < 72 ? Deed::Delete
           : kind < 80 ? Deed::OneNode
           : kind < 90 ? Deed::SomeNodes
           : kind < 96 ? Deed::AllNodes
                       : Deed::Mixture;
}

std::uint32_t randomOperation(Random &random)
{
    static const std::vector<std::uint32_t> kOperations = {kModified, kModified, kModified,
                                                           kCreated, kDeleted};
    return random.oneOf(kOperations);
}

void addOneNode(Random &random, std::vector<Change> &changes, const Schema &schema,
                const Entry &entry)
{
    const std::uint32_t which = random.below(size32(schema.nodes.size()));
    const std::uint32_t oper = randomOperation(random);
    changes.push_back(leafChange(random, oper, schema.nodes[which], entry, entry.values[which]));
}

// Every node by an operation of its own.
void addMixture(Random &random, std::vector<Change> &changes, const Schema &schema,
                const Entry &entry)
{
    for (std::size_t i = 0; i < schema.nodes.size(); ++i) {
        const std::uint32_t oper = random.below(3);
        if (schema.nodes[i].pair < entry.pairs)
            changes.push_back(leafChange(random, oper, schema.nodes[i], entry, entry.values[i]));
    }
}

void addEntry(Random &random, std::vector<Change> &changes, const Schema &schema,
              const Entry &entry)
{
    constexpr std::uint32_t kAll = 100;
    constexpr std::uint32_t kSome = 40;
    const Deed deed = randomDeed(random);
    const std::uint32_t oper = deed == Deed::Create   ? kCreated
                               : deed == Deed::Delete ? kDeleted
                                                      : randomOperation(random);
    if (deed == Deed::Create)
        changes.push_back(entryNode(oper, schema, entry));
    if (deed == Deed::OneNode)
        addOneNode(random, changes, schema, entry);
    else if (deed == Deed::Mixture)
        addMixture(random, changes, schema, entry);
    else
        addNodes(random, changes, oper, schema, entry, deed == Deed::SomeNodes ? kSome : kAll);
    if (schema.hasPairs() && random.percent(12))
        addExtraPairs(random, changes, schema, entry, oper);
    if (deed == Deed::Delete)
        changes.push_back(entryNode(oper, schema, entry));
}

} // namespace

std::vector<Change> randomEdit(Random &random, const Schema &schema)
{
    static const std::vector<std::uint32_t> kCounts = {0, 1, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 4};
    std::vector<Change> changes;
    Entry entry;
    const std::uint32_t count = random.percent(5) ? 0 : random.oneOf(kCounts);
    for (std::uint32_t i = 0; i < count; ++i) {
        entry = randomEntry(random, schema, i == 0 ? nullptr : &entry);
        addEntry(random, changes, schema, entry);
    }
    return changes;
}

} // namespace aaanc::test::model
