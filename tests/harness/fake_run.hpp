// What the fake platform's functions know while one of them is called: the run at
// hand, its trace, and what the plug-in holds of the platform's. Private to the
// fake.
#pragma once

#include "fake_platform.hpp"

#include <memory>

// The plug-in must find these functions, whatever else is hidden.
#pragma GCC visibility push(default)
#include "platform/cmf.h"
#include "platform/gnl.h"
#include "platform/nlog.h"
#include "platform/sysrepo.h"
#pragma GCC visibility pop

namespace aaanc::test
{

// What a call that does not belong returns; the trace is WRONG by then anyway.
inline constexpr int kMisused = -1;

// What outputs that mean nothing hold; whoever uses them is found out.
inline constexpr std::uint32_t kJunkNumber = 0x5a5a5a5a;

template <typename T> T *junkPointer()
{
    return reinterpret_cast<T *>(std::uintptr_t{0x5a5a5a50});
}

// A heap copy without a byte to spare, so that a sanitizer sees every overrun.
char *exactCopy(std::string_view text);

// Overwrites before freeing, so that a late reader does not find the old text.
void scribbleAndFree(char *text);

void setLogLevel(int level);

// The trace being written, and what a log line needs to be written.
struct Recorder {
    Trace trace;
    const std::map<std::size_t, int> *level_from_call = nullptr;

    Recorder()
    {
        trace.reserve(64);
    }
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;
    virtual ~Recorder() = default;

    // How a log line prints a pointer.
    virtual std::string pointerName(const void *pointer) const
    {
        return pointer == nullptr ? "null" : "unknown";
    }

    void record(std::string line);
    void recordResult(std::string line, std::int32_t code); // LINE -> CODE
    void wrong(const std::string &what);
};

// A value that the plug-in holds.
struct LiveValue {
    sr_val_t *value = nullptr;
    char *text = nullptr; // the string in the value's data
    const Value *source = nullptr;
    std::size_t change = 0; // 1-based
    bool is_old = false;
    std::vector<char *> key_copies;

    std::string name() const;
    void release() const;
};

struct CmfContext {
    const Exchange *exchange = nullptr;
    void *reply = nullptr;

    CmfContext() = default;
    CmfContext(const CmfContext &) = delete;
    CmfContext &operator=(const CmfContext &) = delete;
    ~CmfContext();
};

// One play of one scenario.
struct Run final : Recorder {
    const Scenario &scenario;
    char session = 0;
    std::unique_ptr<char> iterator;
    std::vector<LiveValue> live;
    std::unique_ptr<CmfContext> context;
    std::size_t delivered = 0;
    std::size_t next_calls = 0;
    std::size_t node_name_calls = 0;
    std::size_t key_calls = 0;
    std::size_t unhex_calls = 0;
    std::size_t requests = 0;

    explicit Run(const Scenario &what) : scenario(what)
    {
        level_from_call = &scenario.log_level_from_call;
    }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;
    ~Run() override;

    std::string pointerName(const void *pointer) const override;

    // The value that this is the xpath of; null when none is held.
    LiveValue *ownerOf(const char *xpath);

    // Makes a value for the plug-in to hold.
    sr_val_t *deliver(const std::optional<Value> &source, bool is_old);

    // The open context, or null (and a WRONG line) when `ctx` is another.
    CmfContext *use(const char *call, const void *ctx);
};

// The subscription context that the plug-in gets, and what its private context
// holds before it is stored. Only their addresses count.
void *subscriptionContext();
void *untouched();

// One call of an entry point.
struct EntryRun final : Recorder {
    const InitScenario &scenario;
    char session = 0;
    std::size_t subscriptions = 0;
    std::int32_t unsubscribe_result = 0;
    // The callbacks subscribed are appended to the first, and named by their
    // place in the second.
    std::vector<sr_subtree_change_cb> *capture = nullptr;
    const std::vector<sr_subtree_change_cb> *known = nullptr;
    void *private_context = untouched();

    explicit EntryRun(const InitScenario &what) : scenario(what) {}

    std::string pointerName(const void *pointer) const override;
};

// Makes a recorder the thread's current one for a while.
class Current
{
public:
    explicit Current(Recorder &recorder);
    ~Current();
    Current(const Current &) = delete;
    Current &operator=(const Current &) = delete;

private:
    Recorder *previous_;
};

// The thread's current run, of the kind that the called function belongs to. Any
// other is the end of the test.
Recorder &recorder();
Run &run();
EntryRun &entryRun();
[[noreturn]] void stop(const char *what);

template <typename T> sr_session_ctx_t *sessionOf(T &running)
{
    return reinterpret_cast<sr_session_ctx_t *>(&running.session);
}

} // namespace aaanc::test
