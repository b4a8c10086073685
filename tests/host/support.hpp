// What the tests of the host share.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "changes.hpp"
#include "document.hpp"
#include "edit.hpp"
#include "schema.hpp"

namespace aaanc::test
{

// AAANC_TEST_DATA and AAANC_YANG are set by the build.
inline std::filesystem::path testData(const std::string &name)
{
    return std::filesystem::path(AAANC_TEST_DATA) / name;
}

// Empty when there is no such file.
inline std::string readText(const std::filesystem::path &file)
{
    if (!std::filesystem::exists(file)) {
        return {};
    }
    std::ifstream stream(file, std::ios::binary);
    std::string text(std::filesystem::file_size(file), '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    return text;
}

inline std::vector<std::string> lines(std::string_view text)
{
    std::vector<std::string> result;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        result.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return result;
}

inline const Schema &schema()
{
    static const Schema loaded(AAANC_YANG);
    return loaded;
}

// The nodes below a schema node that hold a value, in order.
inline std::vector<const lysc_node *> leavesBelow(const lysc_node *top)
{
    std::vector<const lysc_node *> leaves;
    const lysc_node *node = nullptr;
    LYSC_TREE_DFS_BEGIN(top, node)
    {
        if ((node->nodetype & LYD_NODE_TERM) != 0) {
            leaves.push_back(node);
        }
        LYSC_TREE_DFS_END(top, node)
    }
    return leaves;
}

// The data of a start-up configuration in a file.
inline DataTree configuration(const std::filesystem::path &file)
{
    return applyEdit(schema(), {}, readDocument(schema(), file, DocumentKind::Startup));
}

// All files of a directory with this ending, without it.
inline std::vector<std::string> namesOf(const std::string &directory, const std::string &ending)
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(testData(directory))) {
        const std::string name = entry.path().filename();
        if (name.ends_with(ending)) {
            names.push_back(name.substr(0, name.size() - ending.size()));
        }
    }
    return names;
}

// Names a parameterised test by a text, in characters that GoogleTest accepts.
inline std::string testName(const testing::TestParamInfo<std::string> &parameter)
{
    std::string name = parameter.param;
    for (char &character : name) {
        const bool plain = (character >= '0' && character <= '9') ||
                           (character >= 'a' && character <= 'z') ||
                           (character >= 'A' && character <= 'Z');
        character = plain ? character : '_';
    }
    return name;
}

} // namespace aaanc::test
