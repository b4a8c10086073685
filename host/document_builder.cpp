#include "document_builder.hpp"

#include <array>
#include <utility>

#include <fmt/format.h>

#include "input_error.hpp"
#include "printable.hpp"

namespace aaanc
{

namespace
{

constexpr std::array<std::pair<std::string_view, Operation>, 5> kOperations = {{
    {"merge", Operation::Merge},
    {"create", Operation::Create},
    {"replace", Operation::Replace},
    {"delete", Operation::Delete},
    {"remove", Operation::Remove},
}};

} // namespace

DocumentBuilder::DocumentBuilder(const Schema &schema, std::string file, DocumentKind kind)
    : schema_(schema), file_(std::move(file)), kind_(kind), stack_(1)
{
}

std::string DocumentBuilder::path() const
{
    std::string result;
    for (const DocumentNode &node : stack_) {
        if (node.schema != nullptr) {
            result = childPath(result, node);
        }
    }
    return result;
}

void DocumentBuilder::fail(std::size_t line, const std::string &message) const
{
    throw InputError(file_, line, path(), message);
}

const lysc_node *DocumentBuilder::resolve(const lys_module *module, std::string_view name,
                                          std::size_t line) const
{
    const lysc_node *parent = top().schema;
    if (module == nullptr && parent != nullptr) {
        module = parent->module;
    }
    const lysc_node *found = module != nullptr && !name.empty()
                                 ? lys_find_child(parent, module, name.data(), name.size(), 0, 0)
                                 : nullptr;
    if (found == nullptr || (found->nodetype & (LYS_CONTAINER | LYS_LIST | LYS_LEAF)) == 0) {
        fail(line, fmt::format("unknown node \"{}\"", printable(name)));
    }
    return found;
}

void DocumentBuilder::open(const lysc_node *schema, std::size_t line)
{
    DocumentNode &node = stack_.emplace_back();
    node.schema = schema;
    node.line = line;
}

void DocumentBuilder::close()
{
    DocumentNode node = std::move(stack_.back());
    stack_.pop_back();
    stack_.back().children.push_back(std::move(node));
}

void DocumentBuilder::setOperation(DocumentNode &node, std::string_view operation,
                                   std::size_t line) const
{
    if (kind_ == DocumentKind::Startup) {
        fail(line, "a start-up configuration has no operations");
    }
    for (const auto &[name, value] : kOperations) {
        if (name == operation) {
            node.operation = value;
            return;
        }
    }
    fail(line, fmt::format("unknown operation \"{}\"", printable(operation)));
}

Document DocumentBuilder::finish()
{
    return {std::move(file_), std::move(stack_.front())};
}

} // namespace aaanc
