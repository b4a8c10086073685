// One state of the datastore.
#pragma once

#include <utility>

#include <libyang/libyang.h>

namespace aaanc
{

// Owns a data tree: its first top-level node, null when there are no data. It
// holds explicit nodes only, and no plain container that is empty.
class DataTree
{
public:
    DataTree() = default;
    explicit DataTree(lyd_node *first) : first_(first) {}
    DataTree(DataTree &&other) noexcept : first_(std::exchange(other.first_, nullptr)) {}
    DataTree &operator=(DataTree &&other) noexcept
    {
        std::swap(first_, other.first_);
        return *this;
    }
    DataTree(const DataTree &) = delete;
    DataTree &operator=(const DataTree &) = delete;
    ~DataTree()
    {
        lyd_free_all(first_);
    }

    [[nodiscard]] lyd_node *first() const
    {
        return first_;
    }
    // For libyang's calls that change the tree or make one.
    [[nodiscard]] lyd_node **slot()
    {
        return &first_;
    }
    [[nodiscard]] DataTree copy() const;
    // Takes `node` and all below it out, and destroys them.
    void remove(lyd_node *node);

private:
    lyd_node *first_ = nullptr;
};

} // namespace aaanc
