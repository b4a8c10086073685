// The YANG module that the datastore holds data of.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <libyang/libyang.h>

namespace aaanc
{

// A libyang context with "orvek-aaa" loaded. It outlives every tree made with it.
class Schema
{
public:
    // Loads the module from `directory`; throws InputError if that fails.
    explicit Schema(const std::filesystem::path &directory);

    [[nodiscard]] const ly_ctx *context() const
    {
        return context_.get();
    }
    // The schema node of a data path without predicates; null if there is none.
    [[nodiscard]] const lysc_node *find(const std::string &path) const;
    // libyang's message for the last error in this context, made printable.
    [[nodiscard]] std::string lastError() const;
    // The path of the node that it is about; empty where there is none.
    [[nodiscard]] std::string lastErrorNode() const;

private:
    struct Destroy {
        void operator()(ly_ctx *context) const
        {
            ly_ctx_destroy(context);
        }
    };
    std::unique_ptr<ly_ctx, Destroy> context_;
};

inline bool isList(const lysc_node *node)
{
    return node->nodetype == LYS_LIST;
}

inline bool isLeaf(const lysc_node *node)
{
    return node->nodetype == LYS_LEAF;
}

inline bool isKey(const lysc_node *node)
{
    return (node->flags & LYS_KEY) != 0;
}

// A container that is there only to hold what is in it.
inline bool isPlainContainer(const lysc_node *node)
{
    return node->nodetype == LYS_CONTAINER && (node->flags & LYS_PRESENCE) == 0;
}

} // namespace aaanc
