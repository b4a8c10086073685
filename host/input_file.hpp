// Files that a user names.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace aaanc
{

// What errors call the file.
std::string inputName(const std::filesystem::path &file);

// Far above the configuration of any switch; an edit of this size still takes only
// seconds.
constexpr std::size_t kMaxInputSize = std::size_t{16} << 20U;
// A recording names the whole entry at every leaf, and so has several times the
// size of the edit that it is of.
constexpr std::size_t kMaxRecordingSize = 8 * kMaxInputSize;

// All that is in a file ("-" is standard input). Throws InputError, also where that
// is more than `limit` bytes.
std::string readInput(const std::filesystem::path &file, std::size_t limit = kMaxInputSize);

// Standard input can be read only once. Throws InputError if it is there twice.
void refuseStandardInputTwice(const std::vector<std::filesystem::path> &files);

} // namespace aaanc
