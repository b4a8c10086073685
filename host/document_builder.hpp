// Builds a document from the events of a reader.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "document.hpp"

namespace aaanc
{

// Resolves names against the schema as they come, so that no input can nest
// deeper than the schema does. Throws InputError.
class DocumentBuilder
{
public:
    DocumentBuilder(const Schema &schema, std::string file, DocumentKind kind);

    // The schema node of a child of the open node. `module` is null for the
    // module of the open node.
    const lysc_node *resolve(const lys_module *module, std::string_view name,
                             std::size_t line) const;
    // Opens a child of the open node, until close().
    void open(const lysc_node *schema, std::size_t line);
    void close();
    // The operation of `node`, by name.
    void setOperation(DocumentNode &node, std::string_view operation, std::size_t line) const;
    [[nodiscard]] DocumentNode &top()
    {
        return stack_.back();
    }
    [[nodiscard]] const DocumentNode &top() const
    {
        return stack_.back();
    }
    // Nothing but the root is open.
    [[nodiscard]] bool atRoot() const
    {
        return stack_.size() == 1;
    }
    [[nodiscard]] const Schema &schema() const
    {
        return schema_;
    }

    [[noreturn]] void fail(std::size_t line, const std::string &message) const;

    // The document; the builder is of no further use.
    Document finish();

private:
    [[nodiscard]] std::string path() const;

    const Schema &schema_;
    std::string file_;
    DocumentKind kind_;
    std::vector<DocumentNode> stack_; // from the root to the open node
};

void readXml(DocumentBuilder &builder, std::string_view text);
void readJson(DocumentBuilder &builder, std::string_view text);

} // namespace aaanc
