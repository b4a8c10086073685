// The changes of a commit, as sysrepo 0.7 tells them to a subscriber.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data_tree.hpp"

namespace aaanc
{

// A null xpath and a null text come from recordings only.
struct Value {
    std::optional<std::string> xpath; // instance path, keys as predicates in key order
    std::uint32_t type = 0;           // an SR_..._T of platform/sysrepo.h
    std::optional<std::string> text;  // of a leaf, canonical
};

// How a value of a type holds its data. Types without a number of their own hold
// a text, as platform/sysrepo.h has it for the ones that are used.
enum class DataKind { None, Bool, Number, Text };
DataKind dataKind(std::uint32_t type);

struct Change {
    std::uint32_t oper = 0; // an SR_OP_... of platform/sysrepo.h
    std::optional<Value> old_value;
    std::optional<Value> new_value;
};

// The type of a node's values. Throws std::logic_error for a leaf without any.
std::uint32_t typeOf(const lysc_node *schema);

// A change that is told: one of a recording, or a node of a data tree, whose
// values are made when they are read, since those of a large configuration take
// much memory. Lives no longer than what it refers to.
class ChangeRef
{
public:
    explicit ChangeRef(const Change &recorded) : recorded_(&recorded) {}
    // Throws as typeOf() does.
    ChangeRef(std::uint32_t oper, const lyd_node *node);

    [[nodiscard]] Change read() const;
    // Null where it is one of a recording.
    [[nodiscard]] const lysc_node *schema() const
    {
        return node_ != nullptr ? node_->schema : nullptr;
    }

private:
    const Change *recorded_ = nullptr;
    std::uint32_t oper_ = 0;
    const lyd_node *node_ = nullptr;
};

using ChangeRefs = std::vector<ChangeRef>;

ChangeRefs refsTo(const std::vector<Change> &changes);
// Those at `xpath` (a path without predicates) and below, in their order.
ChangeRefs changesBelow(const ChangeRefs &changes, std::string_view xpath);

// The changes of a commit.
struct ChangeSet {
    DataTree diff; // that they refer to, where it is not the data
    ChangeRefs refs;
};

// The changes from `before` to `after`, which outlive them. First all that are
// modified, then all that are deleted, then all that are created:
//
// - Created and modified nodes come level by level: all siblings, then what is
//   below each. A new entry comes as list node, keys, other children; a new
//   plain container before what it holds.
// - A deleted entry comes bottom up: keys and other leaves, then each
//   container behind what it held, the list node last. A plain container that
//   ceases to be outside a deleted entry comes right behind the first of its
//   nodes that is deleted.
//
// Siblings come in schema order, entries of a list in the order of their making.
ChangeSet changesBetween(const DataTree &before, const DataTree &after);

} // namespace aaanc
