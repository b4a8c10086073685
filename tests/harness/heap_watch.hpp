// Watches the heap: while the plug-in runs, nothing may be allocated or freed.
// The allocator is interposed in every test that has the plug-in on a platform of
// its own; not in those of tests/host and tests/threads, where it is in aaanc's.
#pragma once

#include <cstddef>

namespace aaanc::test
{

// The plug-in runs on this thread, but for what an InPlatform covers.
class InPlugin
{
public:
    InPlugin();
    ~InPlugin();
    InPlugin(const InPlugin &) = delete;
    InPlugin &operator=(const InPlugin &) = delete;

    // How often the plug-in, or libc on its behalf, has used the heap.
    [[nodiscard]] std::size_t heapUses() const;

private:
    bool outer_;
    std::size_t uses_before_;
};

// A function of the platform runs, which may use the heap.
class InPlatform
{
public:
    InPlatform();
    ~InPlatform();
    InPlatform(const InPlatform &) = delete;
    InPlatform &operator=(const InPlatform &) = delete;

private:
    bool in_plugin_; // that called it
};

} // namespace aaanc::test
