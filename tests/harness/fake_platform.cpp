#include "fake_platform.hpp"

#include "fake_run.hpp"
#include "heap_watch.hpp"

#include <algorithm>
#include <stdexcept>

#include <dlfcn.h>

namespace aaanc::test
{

namespace
{

using InitFunction = int (*)(sr_session_ctx_t *, void **);
using CleanupFunction = void (*)(sr_session_ctx_t *, void *);

// The loaded plug-in; written by loadPlugin() only.
struct Plugin {
    void *handle = nullptr;
    InitFunction init = nullptr;
    CleanupFunction cleanup = nullptr;
    std::vector<sr_subtree_change_cb> callbacks;
};

Plugin plugin;

// What `call` of the plug-in returns; it is to leave the heap alone.
template <typename Call> auto watched(Recorder &recorder, Call call)
{
    std::size_t uses = 0;
    const auto result = [&] {
        const InPlugin runs;
        const auto returned = call();
        uses = runs.heapUses();
        return returned;
    }();
    if (uses != 0)
        recorder.wrong("the heap is used");
    return result;
}

Trace runInit(const InitScenario &scenario, std::vector<sr_subtree_change_cb> *capture)
{
    EntryRun running(scenario);
    running.capture = capture;
    running.known = &plugin.callbacks;
    const Current use(running);
    setLogLevel(scenario.log_level);
    const int result =
        watched(running, [&] { return plugin.init(sessionOf(running), &running.private_context); });
    running.record("private " + running.pointerName(running.private_context));
    running.record("result " + std::to_string(result));
    return std::move(running.trace);
}

} // namespace

void loadPlugin(const std::string &path)
{
    plugin.handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (plugin.handle == nullptr)
        throw std::runtime_error(dlerror());
    plugin.init = reinterpret_cast<InitFunction>(dlsym(plugin.handle, "sr_plugin_init_cb"));
    plugin.cleanup =
        reinterpret_cast<CleanupFunction>(dlsym(plugin.handle, "sr_plugin_cleanup_cb"));
    if (plugin.init == nullptr || plugin.cleanup == nullptr)
        throw std::runtime_error(path + ": an entry point is missing");
    std::vector<sr_subtree_change_cb> callbacks;
    const Trace trace = runInit(InitScenario{}, &callbacks);
    if (trace.back() != "result 0" || callbacks.size() != kSubscriptions.size())
        throw std::runtime_error(path + ": the initialisation does not make the " +
                                 std::to_string(kSubscriptions.size()) + " subscriptions");
    plugin.callbacks = callbacks;
}

Trace play(const Scenario &scenario)
{
    const auto row =
        std::find_if(kSubscriptions.begin(), kSubscriptions.end(), [&](const Subscription &known) {
            return scenario.callback == known.callback;
        });
    const auto index = static_cast<std::size_t>(row - kSubscriptions.begin());
    if (index >= plugin.callbacks.size())
        stop("no such callback, or no plug-in is loaded");

    Run playing(scenario);
    const Current use(playing);
    setLogLevel(scenario.log_level);
    const std::unique_ptr<char, decltype(&scribbleAndFree)> xpath(exactCopy(scenario.xpath),
                                                                  scribbleAndFree);
    const int result = watched(playing, [&] {
        return plugin.callbacks[index](sessionOf(playing), xpath.get(), scenario.event, nullptr);
    });
    if (playing.context)
        playing.wrong("a context is left open");
    playing.record("result " + std::to_string(result));
    return std::move(playing.trace);
}

Trace playInit(const InitScenario &scenario)
{
    return runInit(scenario, nullptr);
}

Trace playCleanup(int log_level, std::int32_t unsubscribe_result)
{
    const InitScenario scenario;
    EntryRun running(scenario);
    running.unsubscribe_result = unsubscribe_result;
    const Current use(running);
    setLogLevel(log_level);
    watched(running, [&] {
        plugin.cleanup(sessionOf(running), subscriptionContext());
        return 0;
    });
    return std::move(running.trace);
}

const int *pluginInteger(const char *name)
{
    return static_cast<const int *>(dlsym(plugin.handle, name));
}

} // namespace aaanc::test
