#include "changes.hpp"
#include "edit.hpp"

#include <algorithm>
#include <iterator>

namespace aaanc::test::model
{
namespace
{

using Changes = std::vector<Change>;

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
    const Change added = makeChange(random.below(3), valueAt(xpath, unknown));
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
        missing = valueAt(schema.xpath + "/other", randomValue(random, Content::VrfName));
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
