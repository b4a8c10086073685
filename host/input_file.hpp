// Files that a user names.
#pragma once

#include <filesystem>
#include <string>

namespace aaanc
{

// What errors call the file.
std::string inputName(const std::filesystem::path &file);

// All that is in a file ("-" is standard input). Throws InputError, also for one
// that is far larger than any that makes sense.
std::string readInput(const std::filesystem::path &file);

} // namespace aaanc
