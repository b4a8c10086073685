#include "edit.hpp"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include <fmt/format.h>

#include "input_error.hpp"

namespace aaanc
{

namespace
{

constexpr std::size_t kMaxKeys = 8;

void require(LY_ERR result)
{
    // Names, values and keys have been checked, so that only memory can lack.
    if (result != LY_SUCCESS) {
        throw std::bad_alloc();
    }
}

// Makes a node without children but its keys, below `parent`, or on its own if
// that is null.
lyd_node *makeNode(const DocumentNode &node, lyd_node *parent)
{
    const lys_module *module = node.schema->module;
    const char *name = node.schema->name;
    lyd_node *made = nullptr;
    if (isList(node.schema)) {
        std::array<const char *, kMaxKeys> keys{};
        std::size_t count = 0;
        for (const lysc_node *key = lysc_node_child(node.schema);
             key != nullptr && isKey(key) && count < kMaxKeys; key = key->next) {
            keys[count++] =
                std::ranges::find(node.children, key, &DocumentNode::schema)->value->c_str();
        }
        // Takes as many keys as the list has.
        require(lyd_new_list(parent, module, name, 0, &made, keys[0], keys[1], keys[2], keys[3],
                             keys[4], keys[5], keys[6], keys[7]));
    } else if (isLeaf(node.schema)) {
        require(lyd_new_term(parent, module, name, node.value->c_str(), 0, &made));
    } else {
        require(lyd_new_inner(parent, module, name, 0, &made));
    }
    return made;
}

// The entry of a list among `siblings`. An entry of these keys is made, below
// a stand-in of the parent, to look for it: a predicate could not hold a key
// with both kinds of quotes.
lyd_node *findEntry(const DocumentNode &node, const lyd_node *parent, const lyd_node *siblings)
{
    DataTree stand_in;
    if (parent != nullptr) {
        require(lyd_dup_single(parent, nullptr, LYD_DUP_NO_META, stand_in.slot()));
    }
    lyd_node *entry = makeNode(node, stand_in.first());
    if (stand_in.first() == nullptr) {
        *stand_in.slot() = entry;
    }
    lyd_node *match = nullptr;
    lyd_find_sibling_first(siblings, entry, &match);
    return match;
}

class Editor
{
public:
    Editor(const DataTree &data, const Document &edit) : tree_(data.copy()), edit_(edit) {}

    DataTree run()
    {
        applyChildren(edit_.root, nullptr, "", Operation::Merge);
        return std::move(tree_);
    }

private:
    void applyChildren(const DocumentNode &parent, lyd_node *data, const std::string &path,
                       Operation inherited)
    {
        for (const DocumentNode &node : parent.children) {
            if (!isKey(node.schema)) { // keys are made and found with their entry
                apply(node, data, path, effectiveOperation(node, inherited));
            }
        }
    }

    void apply(const DocumentNode &node, lyd_node *parent, const std::string &parent_path,
               Operation operation)
    {
        lyd_node *match = find(node, parent);
        switch (operation) {
        case Operation::Delete:
            if (match == nullptr) {
                fail(node, parent_path, "data-missing: there is no such node to delete");
            }
            [[fallthrough]];
        case Operation::Remove:
            if (match != nullptr) {
                tree_.remove(match);
            }
            return;
        case Operation::Create:
            if (match != nullptr) {
                fail(node, parent_path, "data-exists: the node to create is there already");
            }
            break;
        case Operation::Replace:
            if (match != nullptr) {
                empty(match);
            }
            break;
        case Operation::Merge:
            break;
        }
        put(node, parent, match, parent_path, operation);
    }

    // Makes the node, or changes the one that is there.
    void put(const DocumentNode &node, lyd_node *parent, lyd_node *match,
             const std::string &parent_path, Operation operation)
    {
        if (match == nullptr) {
            match = insert(node, parent);
        } else if (isLeaf(node.schema)) {
            lyd_change_term(match, node.value->c_str()); // its result tells whether it differs
        }
        if (isLeaf(node.schema)) {
            return;
        }
        applyChildren(node, match, childPath(parent_path, node), operation);
        if (isPlainContainer(node.schema) && lyd_child(match) == nullptr) {
            tree_.remove(match);
        }
    }

    // The node of the data that `node` means; null if there is none.
    lyd_node *find(const DocumentNode &node, const lyd_node *parent) const
    {
        const lyd_node *siblings = parent != nullptr ? lyd_child(parent) : tree_.first();
        if (siblings == nullptr) {
            return nullptr;
        }
        if (isList(node.schema)) {
            return findEntry(node, parent, siblings);
        }
        lyd_node *match = nullptr;
        lyd_find_sibling_val(siblings, node.schema, nullptr, 0, &match);
        return match;
    }

    lyd_node *insert(const DocumentNode &node, lyd_node *parent)
    {
        lyd_node *made = makeNode(node, parent);
        if (parent == nullptr) {
            require(lyd_insert_sibling(tree_.first(), made, tree_.slot()));
        }
        return made;
    }

    // Takes away everything below a node, except keys.
    void empty(lyd_node *node)
    {
        lyd_node *next = nullptr;
        for (lyd_node *child = lyd_child_no_keys(node); child != nullptr; child = next) {
            next = child->next;
            tree_.remove(child);
        }
    }

    [[noreturn]] void fail(const DocumentNode &node, const std::string &parent_path,
                           const char *message) const
    {
        throw InputError(edit_.file, node.line, childPath(parent_path, node), message);
    }

    DataTree tree_;
    const Document &edit_;
};

// What the schema demands of the data as a whole. libyang adds what is there by
// default to what it validates, so it gets a copy.
void validate(const Schema &schema, const DataTree &data, const Document &edit)
{
    DataTree copy = data.copy();
    if (lyd_validate_all(copy.slot(), schema.context(),
                         LYD_VALIDATE_NO_STATE | LYD_VALIDATE_PRESENT, nullptr) != LY_SUCCESS) {
        throw InputError(edit.file, 0, schema.lastErrorNode(),
                         "the configuration would not be valid: " + schema.lastError());
    }
}

} // namespace

DataTree applyEdit(const Schema &schema, const DataTree &data, const Document &edit)
{
    DataTree result = Editor(data, edit).run();
    validate(schema, result, edit);
    return result;
}

} // namespace aaanc
