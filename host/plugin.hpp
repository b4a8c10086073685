// A plug-in, loaded as sysrepo's plug-in daemon does.
#pragma once

#include <filesystem>
#include <memory>

#include "sysrepo.h"

namespace aaanc
{

class Plugin
{
public:
    // Throws std::runtime_error where it cannot be loaded, or is no plug-in.
    explicit Plugin(const std::filesystem::path &file);

    // sr_plugin_init_cb and sr_plugin_cleanup_cb, with the private context kept
    // in between.
    int initialise(sr_session_ctx_t *session);
    void cleanUp(sr_session_ctx_t *session);

private:
    struct Close {
        void operator()(void *library) const;
    };
    std::unique_ptr<void, Close> library_;
    int (*init_)(sr_session_ctx_t *, void **) = nullptr;
    void (*cleanup_)(sr_session_ctx_t *, void *) = nullptr;
    void *private_ctx_ = nullptr;
};

} // namespace aaanc
