// The model of tests/model makes edits from a schema of its own, since it also runs where
// there is no libyang. Here it is held against the module: no leaf goes untried.
#include <set>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include "model/schema.hpp"
#include "support.hpp"
#include "sysrepo.h"

namespace aaanc::test
{

namespace
{

std::string asText(const std::string &xpath, const std::set<std::uint32_t> &types, bool is_key)
{
    return fmt::format("{}: type {}{}\n", xpath, fmt::join(types, " or "), is_key ? ", key" : "");
}

std::string ofModule()
{
    std::string text;
    for (const lysc_node *leaf : leavesBelow(schema().find("/orvek-aaa:sysAaa"))) {
        char path[256];
        lysc_path(leaf, LYSC_PATH_DATA, path, sizeof(path));
        std::set<std::uint32_t> types = {typeOf(leaf)};
        // A switch may have it as a boolean, whose byte is the same.
        if (std::string_view(leaf->name) == "startFailType") {
            types.insert(SR_BOOL_T);
        }
        text += asText(path, types, isKey(leaf));
    }
    return text;
}

// The types of the values that the model makes for a leaf.
std::set<std::uint32_t> typesOf(model::Content content)
{
    model::Random random(1, 0);
    std::set<std::uint32_t> types;
    for (int i = 0; i < 100; ++i) {
        types.insert(model::randomValue(random, content).type);
    }
    return types;
}

std::string ofModel()
{
    std::string text;
    for (const model::Schema &subtree : model::schemas()) {
        for (const model::Node &node : subtree.nodes) {
            if (node.content != model::Content::Container) {
                text += asText(subtree.xpath + "/" + node.path, typesOf(node.content), node.is_key);
            }
        }
    }
    return text;
}

TEST(Model, MakesEachLeafOfTheModule)
{
    EXPECT_EQ(ofModel(), ofModule());
}

} // namespace

} // namespace aaanc::test
