#include "locations.hpp"

namespace aaanc
{

namespace
{

std::filesystem::path besideExecutable(const char *relative)
{
    const auto executable = std::filesystem::read_symlink("/proc/self/exe");
    return (executable.parent_path() / relative).lexically_normal();
}

// `first`, unless it is not there.
std::filesystem::path existing(const char *first, const char *second)
{
    const std::filesystem::path path = besideExecutable(first);
    return std::filesystem::exists(path) ? path : besideExecutable(second);
}

} // namespace

std::filesystem::path defaultPlugin()
{
    return existing("libaaa-nc.so", AAANC_PLUGIN_DIR "/libaaa-nc.so");
}

std::filesystem::path defaultYang()
{
    return existing(AAANC_SOURCE_YANG_DIR, AAANC_YANG_DIR);
}

} // namespace aaanc
