#include "edit.hpp"

#include <algorithm>

namespace aaanc::test::model
{
namespace
{

constexpr std::uint32_t kListType = 2;
constexpr std::uint32_t kContainerType = 3;
constexpr std::uint32_t kCreated = 0;
constexpr std::uint32_t kModified = 1;
constexpr std::uint32_t kDeleted = 2;

std::uint32_t size32(std::size_t size)
{
    return static_cast<std::uint32_t>(size);
}

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

Value at(const std::string &xpath, Value value)
{
    value.xpath = xpath;
    return value;
}

Change change(std::uint32_t oper, const Value &value)
{
    Change result;
    result.oper = oper;
    (oper == kDeleted ? result.old_value : result.new_value) = value;
    return result;
}

Change entryNode(std::uint32_t oper, const Schema &schema, const Entry &entry)
{
    Value value;
    value.type = schema.is_list ? kListType : kContainerType;
    return change(oper, at(entry.xpath, value));
}

Change leafChange(Random &random, std::uint32_t oper, const Node &node, const Entry &entry,
                  const Value &value)
{
    const std::string xpath = entry.xpath + '/' + node.path;
    Change result = change(oper, at(xpath, value));
    if (oper == kModified)
        result.old_value = at(xpath, nodeValue(random, node));
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

// ---- Disturbances ----------------------------------------------------------

using Changes = std::vector<Change>;

std::optional<Value> &chosen(Change &change)
{
    return change.oper == kDeleted ? change.old_value : change.new_value;
}

std::uint32_t position(Random &random, const Changes &changes)
{
    return random.below(size32(changes.size()));
}

Changes::iterator at(Changes &changes, std::uint32_t position)
{
    return changes.begin() + static_cast<std::ptrdiff_t>(position);
}

void shuffle(Random &random, const Schema &, Changes &changes)
{
    for (std::uint32_t i = size32(changes.size()); i > 1; --i)
        std::swap(changes[i - 1], changes[random.below(i)]);
}

void swapNeighbours(Random &random, const Schema &, Changes &changes)
{
    for (std::uint32_t left = random.between(1, 3); left > 0; --left) {
        const std::uint32_t first = position(random, changes);
        if (first + 1 < changes.size())
            std::swap(changes[first], changes[first + 1]);
    }
}

void lose(Random &random, const Schema &, Changes &changes)
{
    changes.erase(at(changes, position(random, changes)));
}

// One leaf of all entries.
void loseLeaf(Random &random, const Schema &schema, Changes &changes)
{
    const std::string ending = '/' + random.oneOf(schema.nodes).name();
    std::erase_if(changes, [&](Change &change) {
        const auto &value = chosen(change);
        return value && value->xpath && value->xpath->ends_with(ending);
    });
}

void repeat(Random &random, const Schema &, Changes &changes)
{
    const Change copy = changes[position(random, changes)];
    const std::uint32_t to = position(random, changes);
    changes.insert(at(changes, to), copy);
}

std::string unknownName(Random &random)
{
    static const std::vector<std::string> kNames = {
        "description",      "startFailTypes", "StartFailType", "vrfname",
        "serverGroupTypeX", "groupType4",     "groupName0",    "GroupNum",
        "GroupNum4",        "groupNum1",      "keyType",       "x"};
    if (random.percent(40))
        return random.oneOf(kNames);
    const Schema &other = random.oneOf(schemas());
    return random.oneOf(other.nodes).name();
}

// A leaf that the subtree does not have, or has elsewhere. It holds zeros, which
// suit whatever the handler takes it for.
void addUnknown(Random &random, const Schema &schema, Changes &changes)
{
    const std::uint32_t to = position(random, changes);
    const Change &near = changes[to];
    const auto &value = near.new_value ? near.new_value : near.old_value;
    std::string parent = schema.xpath;
    if (value && value->xpath && random.percent(85))
        parent = value->xpath->substr(0, value->xpath->rfind(']') + 1);
    Value unknown;
    unknown.type = 18;
    unknown.data = NullString{};
    const std::string xpath = parent + '/' + unknownName(random);
    const Change added = change(random.below(3), at(xpath, unknown));
    changes.insert(at(changes, to), added);
}

void move(Random &random, const Schema &, Changes &changes)
{
    static const std::vector<std::uint32_t> kOperations = {3, 3, 3, 4, 7, 0x80000000, 0xffffffff};
    Change &moved = changes[position(random, changes)];
    moved.oper = random.oneOf(kOperations);
}

void loseValue(Random &random, const Schema &, Changes &changes)
{
    Change &change = changes[position(random, changes)];
    if (random.percent(50))
        (change.oper == kDeleted ? change.new_value : change.old_value) = chosen(change);
    chosen(change).reset();
}

// Both values, whatever the operation.
void addValue(Random &random, const Schema &schema, Changes &changes)
{
    Change &change = changes[position(random, changes)];
    auto &missing = change.new_value ? change.old_value : change.new_value;
    if (!missing)
        missing = at(schema.xpath + "/other", randomValue(random, Content::VrfName));
}

void loseXpath(Random &random, const Schema &, Changes &changes)
{
    auto &value = chosen(changes[position(random, changes)]);
    if (!value)
        return;
    value->xpath.reset();
    if (random.percent(50))
        value->xpath = "/orvek-aaa:sysAaa";
}

// One key goes by another name.
void loseKey(Random &random, const Schema &schema, Changes &changes)
{
    auto &value = chosen(changes[position(random, changes)]);
    const std::string name = '[' + random.oneOf(schema.nodes).name() + '=';
    const std::size_t place = value && value->xpath ? value->xpath->find(name) : std::string::npos;
    if (place != std::string::npos)
        value->xpath->replace(place, 1, "[x");
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

void disturb(Random &random, const Schema &schema, std::vector<Change> &changes)
{
    using Disturbance = void (*)(Random &, const Schema &, Changes &);
    static const std::vector<Disturbance> kAll = {
        loseLeaf, loseLeaf, shuffle,    shuffle,    swapNeighbours, lose,     lose,      repeat,
        repeat,   move,     addUnknown, addUnknown, loseValue,      addValue, loseXpath, loseKey};
    const Disturbance disturbance = random.oneOf(kAll);
    if (!changes.empty())
        disturbance(random, schema, changes);
}

} // namespace aaanc::test::model
