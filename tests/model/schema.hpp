// Names and contents of the eleven subtrees, as far as edits need them.
#pragma once

#include "words.hpp"

#include <string>
#include <vector>

namespace aaanc::test::model
{

struct Node {
    std::string path; // below the list entry
    Content content;
    bool is_key = false;
    int pair = -1; // which of the method list's groups it belongs to

    // The last part of the path.
    std::string name() const
    {
        return path.substr(path.rfind('/') + 1);
    }
};

struct Schema {
    std::string callback;
    std::string xpath; // of the container, or of the list without its keys
    bool is_list;
    std::vector<Node> nodes; // in the order of delivery

    bool hasPairs() const;
};

const std::vector<Schema> &schemas();

} // namespace aaanc::test::model
