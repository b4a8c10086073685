#include "changes.hpp"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <new>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "schema.hpp"
#include "sysrepo.h"
#include "xpath.hpp"

namespace aaanc
{

namespace
{

enum class Fate { Kept, Modified, Created, Deleted };

std::string metadata(const lyd_node *node, const char *name)
{
    const lyd_meta *meta = lyd_find_meta(node->meta, nullptr, name);
    return meta != nullptr ? lyd_get_meta_value(meta) : "";
}

// What a diff of libyang's says of a node whose parent has the fate `parent`.
Fate fateOf(const lyd_node *node, Fate parent)
{
    const std::string operation = metadata(node, "yang:operation");
    return operation == "create"    ? Fate::Created
           : operation == "delete"  ? Fate::Deleted
           : operation == "replace" ? Fate::Modified
           : operation == "none"    ? Fate::Kept
                                    : parent;
}

Value valueOf(const lyd_node *node)
{
    char *path = lyd_path(node, LYD_PATH_STD, nullptr, 0);
    if (path == nullptr) {
        throw std::bad_alloc();
    }
    Value value{path, typeOf(node->schema), ""};
    std::free(path);
    if (isLeaf(node->schema)) {
        value.text = lyd_get_value(node);
    }
    return value;
}

// Empty where it has none.
std::string pathOf(const Change &change)
{
    const std::optional<Value> &value = change.new_value ? change.new_value : change.old_value;
    return value && value->xpath ? *value->xpath : "";
}

// Walks a diff of libyang's, once for each operation.
class DiffWalk
{
public:
    // `fate` is that of all nodes for which the diff says nothing.
    ChangeRefs run(const lyd_node *first, Fate fate)
    {
        modified(first, fate);
        deleted(first, fate);
        created(first, fate);
        return std::move(changes_);
    }

private:
    void modified(const lyd_node *first, Fate parent)
    {
        const lyd_node *node = nullptr;
        LY_LIST_FOR(first, node)
        {
            if (fateOf(node, parent) == Fate::Modified) {
                changes_.emplace_back(SR_OP_MODIFIED, node);
            }
        }
        LY_LIST_FOR(first, node)
        {
            if (fateOf(node, parent) == Fate::Kept) {
                modified(lyd_child(node), Fate::Kept);
            }
        }
    }

    void deleted(const lyd_node *first, Fate parent)
    {
        const lyd_node *node = nullptr;
        LY_LIST_FOR(first, node)
        {
            const Fate fate = fateOf(node, parent);
            if (fate == Fate::Kept || (fate == Fate::Deleted && isPlainContainer(node->schema))) {
                deleted(lyd_child(node), fate);
            } else if (fate == Fate::Deleted) {
                deleteBottomUp(node);
                deleteContainersAbove(node);
            }
        }
    }

    void deleteBottomUp(const lyd_node *node)
    {
        const lyd_node *child = nullptr;
        LY_LIST_FOR(lyd_child(node), child)
        {
            deleteBottomUp(child);
        }
        changes_.emplace_back(SR_OP_DELETED, node);
    }

    // The plain containers that cease to be with the first node below them.
    void deleteContainersAbove(const lyd_node *node)
    {
        for (const lyd_node *above = lyd_parent(node);
             above != nullptr && isPlainContainer(above->schema) && isGone(above) &&
             gone_.insert(above).second;
             above = lyd_parent(above)) {
            changes_.emplace_back(SR_OP_DELETED, above);
        }
    }

    static bool isGone(const lyd_node *node)
    {
        for (; node != nullptr; node = lyd_parent(node)) {
            const Fate fate = fateOf(node, Fate::Modified);
            if (fate != Fate::Modified) {
                return fate == Fate::Deleted;
            }
        }
        return false;
    }

    void created(const lyd_node *first, Fate parent)
    {
        const lyd_node *node = nullptr;
        LY_LIST_FOR(first, node)
        {
            if (fateOf(node, parent) == Fate::Created && !isPlainContainer(node->schema)) {
                createTopDown(node);
            }
        }
        LY_LIST_FOR(first, node)
        {
            const Fate fate = fateOf(node, parent);
            if (fate == Fate::Kept) {
                created(lyd_child(node), Fate::Kept);
            } else if (fate == Fate::Created && isPlainContainer(node->schema)) {
                changes_.emplace_back(SR_OP_CREATED, node);
                created(lyd_child(node), Fate::Created);
            }
        }
    }

    void createTopDown(const lyd_node *node)
    {
        changes_.emplace_back(SR_OP_CREATED, node);
        const lyd_node *child = nullptr;
        LY_LIST_FOR(lyd_child(node), child)
        {
            createTopDown(child);
        }
    }

    ChangeRefs changes_;
    std::unordered_set<const lyd_node *> gone_; // containers whose deletion has been told
};

} // namespace

DataKind dataKind(std::uint32_t type)
{
    switch (type) {
    case SR_LIST_T:
    case SR_CONTAINER_T:
    case SR_CONTAINER_PRESENCE_T:
        return DataKind::None;
    case SR_BOOL_T:
        return DataKind::Bool;
    case SR_UINT8_T:
    case SR_UINT16_T:
    case SR_UINT32_T:
        return DataKind::Number;
    default:
        return DataKind::Text;
    }
}

std::uint32_t typeOf(const lysc_node *schema)
{
    if (isList(schema)) {
        return SR_LIST_T;
    }
    if (!isLeaf(schema)) {
        return isPlainContainer(schema) ? SR_CONTAINER_T : SR_CONTAINER_PRESENCE_T;
    }
    switch (reinterpret_cast<const lysc_node_leaf *>(schema)->type->basetype) {
    case LY_TYPE_BOOL:
        return SR_BOOL_T;
    case LY_TYPE_ENUM:
        return SR_ENUM_T;
    case LY_TYPE_STRING:
        return SR_STRING_T;
    case LY_TYPE_UINT8:
        return SR_UINT8_T;
    case LY_TYPE_UINT16:
        return SR_UINT16_T;
    case LY_TYPE_UINT32:
        return SR_UINT32_T;
    default:
        throw std::logic_error(
            fmt::format("leaf {} has a type that has no value record", schema->name));
    }
}

ChangeRef::ChangeRef(std::uint32_t oper, const lyd_node *node) : oper_(oper), node_(node)
{
    typeOf(node->schema); // fails here rather than in the middle of a callback
}

Change ChangeRef::read() const
{
    if (recorded_ != nullptr) {
        return *recorded_;
    }
    Value value = valueOf(node_);
    if (oper_ == SR_OP_DELETED) {
        return {oper_, std::move(value), std::nullopt};
    }
    if (oper_ == SR_OP_CREATED) {
        return {oper_, std::nullopt, std::move(value)};
    }
    Value old_value = value;
    old_value.text = metadata(node_, "yang:orig-value");
    return {oper_, std::move(old_value), std::move(value)};
}

ChangeRefs refsTo(const std::vector<Change> &changes)
{
    return {changes.begin(), changes.end()};
}

ChangeRefs changesBelow(const ChangeRefs &changes, std::string_view xpath)
{
    std::unordered_map<const lysc_node *, bool> known; // of nodes, which are few
    const auto isBelow = [&](const ChangeRef &change) {
        if (change.schema() == nullptr) {
            return isAtOrBelow(pathOf(change.read()), xpath);
        }
        const auto [place, is_new] = known.try_emplace(change.schema(), false);
        if (is_new) {
            place->second = isAtOrBelow(pathOf(change.read()), xpath);
        }
        return place->second;
    };
    ChangeRefs below;
    std::ranges::copy_if(changes, std::back_inserter(below), isBelow);
    return below;
}

ChangeSet changesBetween(const DataTree &before, const DataTree &after)
{
    if (before.first() == nullptr) {
        return {{}, DiffWalk().run(after.first(), Fate::Created)}; // without a copy of it all
    }
    ChangeSet changes;
    if (lyd_diff_siblings(before.first(), after.first(), 0, changes.diff.slot()) != LY_SUCCESS) {
        throw std::bad_alloc();
    }
    changes.refs = DiffWalk().run(changes.diff.first(), Fate::Kept);
    return changes;
}

} // namespace aaanc
