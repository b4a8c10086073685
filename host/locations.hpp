// Where things are by default, seen from the executable.
#pragma once

#include <filesystem>

namespace aaanc
{

// libaaa-nc.so beside the executable, else where it is installed.
std::filesystem::path defaultPlugin();
// The directory of orvek-aaa.yang: in the sources of a build, else installed.
std::filesystem::path defaultYang();

} // namespace aaanc
