#include "data_tree.hpp"

#include <new>

namespace aaanc
{

DataTree DataTree::copy() const
{
    DataTree result;
    if (first_ != nullptr &&
        lyd_dup_siblings(first_, nullptr, LYD_DUP_RECURSIVE, result.slot()) != LY_SUCCESS) {
        throw std::bad_alloc();
    }
    return result;
}

void DataTree::remove(lyd_node *node)
{
    if (node == first_) {
        first_ = node->next;
    }
    lyd_free_tree(node);
}

} // namespace aaanc
