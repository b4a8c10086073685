#include "plugin.hpp"

#include "sysrepo.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace aaanc::bench
{

void loadPlugin()
{
    void *plugin = dlopen(AAANC_PLUGIN, RTLD_NOW | RTLD_LOCAL);
    using Init = int (*)(sr_session_ctx_t *, void **);
    auto *init =
        plugin != nullptr ? reinterpret_cast<Init>(dlsym(plugin, "sr_plugin_init_cb")) : nullptr;
    void *context = nullptr;
    if (init == nullptr) {
        std::fprintf(stderr, "cannot load the plug-in: %s\n", dlerror());
        std::exit(2);
    }
    if (init(nullptr, &context) != SR_ERR_OK) {
        std::fprintf(stderr, "the plug-in does not initialise\n");
        std::exit(2);
    }
}

} // namespace aaanc::bench
