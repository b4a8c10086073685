#include "document.hpp"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "document_builder.hpp"
#include "input_error.hpp"
#include "input_file.hpp"

namespace aaanc
{

namespace
{

bool takesAway(Operation operation)
{
    return operation == Operation::Delete || operation == Operation::Remove;
}

// Characters that no YANG string holds; libyang lets them pass.
bool isForbidden(char character)
{
    return static_cast<unsigned char>(character) < ' ' && character != '\t' && character != '\n' &&
           character != '\r';
}

const DocumentNode *findKey(const DocumentNode &entry, const lysc_node *key)
{
    const auto found = std::ranges::find(entry.children, key, &DocumentNode::schema);
    return found != entry.children.end() ? &*found : nullptr;
}

// Checks what needs no data, and makes values canonical.
class Checker
{
public:
    Checker(const Schema &schema, const std::string &file) : schema_(schema), file_(file) {}

    void checkChildren(DocumentNode &parent, const std::string &parent_path, Operation inherited)
    {
        std::unordered_map<std::string, const DocumentNode *> seen;
        for (DocumentNode &node : parent.children) {
            const Operation operation = effectiveOperation(node, inherited);
            if (isLeaf(node.schema)) {
                checkLeaf(node, parent_path, operation);
            } else {
                checkInner(node, parent_path, operation);
            }
            checkDuplicate(seen, node, parent_path, inherited);
        }
    }

private:
    void checkLeaf(DocumentNode &leaf, const std::string &parent_path, Operation operation)
    {
        if (isKey(leaf.schema)) {
            if (leaf.operation.has_value() && takesAway(*leaf.operation)) {
                fail(leaf, parent_path, "a key cannot be deleted, only its list entry");
            }
        } else if (takesAway(operation) && leaf.value.value_or("").empty()) {
            return;
        }
        if (!leaf.value.has_value()) {
            fail(leaf, parent_path, "a value is missing");
        }
        const std::string &value = *leaf.value;
        if (std::ranges::any_of(value, isForbidden)) {
            fail(leaf, parent_path, "the value holds a control character, which YANG has none of");
        }
        const char *canonical = nullptr;
        if (lyd_value_validate(schema_.context(), leaf.schema, value.data(), value.size(), nullptr,
                               nullptr, &canonical) != LY_SUCCESS) {
            fail(leaf, parent_path, schema_.lastError());
        }
        leaf.value = canonical;
        lydict_remove(schema_.context(), canonical);
    }

    void checkInner(DocumentNode &node, const std::string &parent_path, Operation operation)
    {
        if (isList(node.schema)) {
            for (const lysc_node *key = lysc_node_child(node.schema); key != nullptr && isKey(key);
                 key = key->next) {
                if (findKey(node, key) == nullptr) {
                    fail(node, parent_path, fmt::format("key \"{}\" is missing", key->name));
                }
            }
        }
        checkChildren(node, childPath(parent_path, node), operation);
    }

    // The same instance twice is a mistake, unless the first one takes away
    // what the second one then makes anew.
    void checkDuplicate(std::unordered_map<std::string, const DocumentNode *> &seen,
                        const DocumentNode &node, const std::string &parent_path,
                        Operation inherited)
    {
        const auto [place, is_new] = seen.try_emplace(childPath("", node), &node);
        if (!is_new) {
            const DocumentNode &earlier = *place->second;
            if (!takesAway(effectiveOperation(earlier, inherited)) ||
                takesAway(effectiveOperation(node, inherited))) {
                fail(node, parent_path,
                     fmt::format("duplicate of the one in line {}", earlier.line));
            }
            place->second = &node;
        }
    }

    [[noreturn]] void fail(const DocumentNode &node, const std::string &parent_path,
                           const std::string &message) const
    {
        throw InputError(file_, node.line, childPath(parent_path, node), message);
    }

    const Schema &schema_;
    const std::string &file_;
};

bool isXml(const std::string &name, std::string_view text)
{
    if (name.ends_with(".xml") || name.ends_with(".json")) {
        return name.ends_with(".xml");
    }
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && text[first] == '<';
}

} // namespace

std::string childPath(const std::string &parent, const DocumentNode &node)
{
    std::string path = parent.empty()
                           ? fmt::format("/{}:{}", node.schema->module->name, node.schema->name)
                           : fmt::format("{}/{}", parent, node.schema->name);
    if (isList(node.schema)) {
        for (const lysc_node *key = lysc_node_child(node.schema); key != nullptr && isKey(key);
             key = key->next) {
            if (const DocumentNode *leaf = findKey(node, key); leaf != nullptr && leaf->value) {
                const char quote = leaf->value->find('\'') == std::string::npos ? '\'' : '"';
                path += fmt::format("[{}={}{}{}]", key->name, quote, *leaf->value, quote);
            }
        }
    }
    return path;
}

Document readDocument(const Schema &schema, const std::string &name, std::string_view text,
                      DocumentKind kind)
{
    DocumentBuilder builder(schema, name, kind);
    if (isXml(name, text)) {
        readXml(builder, text);
    } else {
        readJson(builder, text);
    }
    Document document = builder.finish();
    Checker(schema, document.file).checkChildren(document.root, "", Operation::Merge);
    return document;
}

Document readDocument(const Schema &schema, const std::filesystem::path &file, DocumentKind kind)
{
    return readDocument(schema, inputName(file), readInput(file), kind);
}

} // namespace aaanc
