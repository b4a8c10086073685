#include "plugin.hpp"

#include <stdexcept>

#include <dlfcn.h>
#include <fmt/format.h>

namespace aaanc
{

namespace
{

template <typename Function> Function lookUp(void *library, const char *name)
{
    auto function = reinterpret_cast<Function>(dlsym(library, name));
    if (function == nullptr) {
        throw std::runtime_error(fmt::format("the plug-in has no {}", name));
    }
    return function;
}

} // namespace

void Plugin::Close::operator()(void *library) const
{
    dlclose(library);
}

Plugin::Plugin(const std::filesystem::path &file)
    // A path without a slash would be searched for where libraries are.
    : library_(dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (!library_) {
        throw std::runtime_error(fmt::format("the plug-in cannot be loaded: {}", dlerror()));
    }
    init_ = lookUp<decltype(init_)>(library_.get(), "sr_plugin_init_cb");
    cleanup_ = lookUp<decltype(cleanup_)>(library_.get(), "sr_plugin_cleanup_cb");
}

int Plugin::initialise(sr_session_ctx_t *session)
{
    return init_(session, &private_ctx_);
}

void Plugin::cleanUp(sr_session_ctx_t *session)
{
    cleanup_(session, private_ctx_);
}

} // namespace aaanc
