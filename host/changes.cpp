#include "changes.hpp"

#include <cstdlib>
#include <new>
#include <stdexcept>
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

// Walks a diff of libyang's, once for each operation.
class DiffWalk
{
public:
    std::vector<Change> run(const lyd_node *first)
    {
        modified(first, Fate::Kept);
        deleted(first, Fate::Kept);
        created(first, Fate::Kept);
        return std::move(changes_);
    }

private:
    void modified(const lyd_node *first, Fate parent)
    {
        const lyd_node *node = nullptr;
        LY_LIST_FOR(first, node)
        {
            if (fateOf(node, parent) == Fate::Modified) {
                Value old_value = valueOf(node);
                old_value.text = metadata(node, "yang:orig-value");
                changes_.push_back({SR_OP_MODIFIED, std::move(old_value), valueOf(node)});
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
        changes_.push_back({SR_OP_DELETED, valueOf(node), std::nullopt});
    }

    // The plain containers that cease to be with the first node below them.
    void deleteContainersAbove(const lyd_node *node)
    {
        for (const lyd_node *above = lyd_parent(node);
             above != nullptr && isPlainContainer(above->schema) && isGone(above) &&
             gone_.insert(above).second;
             above = lyd_parent(above)) {
            changes_.push_back({SR_OP_DELETED, valueOf(above), std::nullopt});
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
                changes_.push_back({SR_OP_CREATED, std::nullopt, valueOf(node)});
                created(lyd_child(node), Fate::Created);
            }
        }
    }

    void createTopDown(const lyd_node *node)
    {
        changes_.push_back({SR_OP_CREATED, std::nullopt, valueOf(node)});
        const lyd_node *child = nullptr;
        LY_LIST_FOR(lyd_child(node), child)
        {
            createTopDown(child);
        }
    }

    std::vector<Change> changes_;
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

std::vector<Change> changesBetween(const DataTree &before, const DataTree &after)
{
    DataTree diff;
    if (lyd_diff_siblings(before.first(), after.first(), 0, diff.slot()) != LY_SUCCESS) {
        throw std::bad_alloc();
    }
    return DiffWalk().run(diff.first());
}

std::vector<Change> changesBelow(const std::vector<Change> &changes, std::string_view xpath)
{
    std::vector<Change> below;
    for (const Change &change : changes) {
        const std::optional<Value> &value = change.new_value ? change.new_value : change.old_value;
        if (!value || !value->xpath) {
            continue;
        }
        const std::string path = withoutPredicates(*value->xpath);
        if (path == xpath || (path.starts_with(xpath) && path[xpath.size()] == '/')) {
            below.push_back(change);
        }
    }
    return below;
}

} // namespace aaanc
