// An edit or a start-up configuration, as its file gives it.
//
// libyang reads XML and JSON, but forgets which line a node came from, and the
// errors of an edit (a node to be deleted that is not there, say) are known only
// when it meets the data. It also wants a value of a number that is to be
// deleted. So files are read here, against libyang's schema and types, into
// nodes that know their lines.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "schema.hpp"

namespace aaanc
{

// Operations of NETCONF edit-config.
enum class Operation { Merge, Create, Replace, Delete, Remove };

struct DocumentNode {
    const lysc_node *schema = nullptr;  // null for the root, which stands above the top-level nodes
    std::size_t line = 0;               // 1-based
    std::optional<Operation> operation; // as given; else the parent's counts
    std::optional<std::string> value;   // of a leaf; canonical, unless it is to go and empty
    std::vector<DocumentNode> children; // in the order of the file
};

struct Document {
    std::string file; // its name, for errors
    DocumentNode root;
};

enum class DocumentKind { Edit, Startup };

// Reads a file ("-" is standard input). XML or JSON is told by its name (.xml,
// .json), else by its first character. XML may be wrapped in NETCONF's <config>
// or <data>. Everything is checked that can be without data: names, values,
// keys, duplicates, operations (a start-up configuration takes none). Throws
// InputError.
Document readDocument(const Schema &schema, const std::filesystem::path &file, DocumentKind kind);
// The same for a text that has been read already.
Document readDocument(const Schema &schema, const std::string &name, std::string_view text,
                      DocumentKind kind);

// The path of a node below one of path `parent`, as sysrepo writes it.
std::string childPath(const std::string &parent, const DocumentNode &node);

// The operation of a node below one that has `inherited`.
inline Operation effectiveOperation(const DocumentNode &node, Operation inherited)
{
    return node.operation.value_or(inherited);
}

} // namespace aaanc
