// What is wrong with an input, and where.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

#include "printable.hpp"

namespace aaanc
{

// what() reads "FILE:LINE: NODE: MESSAGE". The line (1-based) and the node are left
// out where there is none, as for a file that cannot be read. File and node are
// made printable here, what a message quotes is by its maker.
class InputError : public std::runtime_error
{
public:
    explicit InputError(const std::string &file, std::size_t line, const std::string &node,
                        const std::string &message)
        : std::runtime_error(printable(file) + (line != 0 ? ":" + std::to_string(line) : "") +
                             ": " + (node.empty() ? "" : printable(node) + ": ") + message)
    {
    }
};

} // namespace aaanc
