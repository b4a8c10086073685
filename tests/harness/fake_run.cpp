#include "fake_run.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>

int srp_ll_syslog = 0;

namespace aaanc::test
{

namespace
{

thread_local Recorder *current = nullptr;

} // namespace

char *exactCopy(std::string_view text)
{
    auto *copy = static_cast<char *>(std::malloc(text.size() + 1));
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

void scribbleAndFree(char *text)
{
    if (text != nullptr)
        std::memset(text, 0xdd, std::strlen(text));
    std::free(text);
}

void setLogLevel(int level)
{
    // Written only when it changes: runs of one level may share the global.
    if (srp_ll_syslog != level)
        srp_ll_syslog = level;
}

void Recorder::record(std::string line)
{
    trace.push_back(std::move(line));
    if (level_from_call == nullptr)
        return;
    const auto change = level_from_call->find(trace.size());
    if (change != level_from_call->end())
        setLogLevel(change->second);
}

void Recorder::recordResult(std::string line, std::int32_t code)
{
    line += " -> ";
    line += std::to_string(code);
    record(std::move(line));
}

void Recorder::wrong(const std::string &what)
{
    record("WRONG " + what);
}

std::string LiveValue::name() const
{
    return (is_old ? "old#" : "new#") + std::to_string(change);
}

void LiveValue::release() const
{
    for (char *copy : key_copies)
        scribbleAndFree(copy);
    scribbleAndFree(text);
    scribbleAndFree(value->xpath);
    std::memset(value, 0xdd, sizeof *value);
    std::free(value);
}

CmfContext::~CmfContext()
{
    std::free(reply);
}

Run::~Run()
{
    for (const LiveValue &held : live)
        held.release();
}

std::string Run::pointerName(const void *pointer) const
{
    for (const LiveValue &held : live)
        if (held.value == pointer)
            return held.name();
    return Recorder::pointerName(pointer);
}

LiveValue *Run::ownerOf(const char *xpath)
{
    for (LiveValue &held : live)
        if (xpath != nullptr && held.value->xpath == xpath)
            return &held;
    return nullptr;
}

sr_val_t *Run::deliver(const std::optional<Value> &source, bool is_old)
{
    if (!source)
        return nullptr;
    LiveValue made;
    made.source = &*source;
    made.change = delivered;
    made.is_old = is_old;
    made.value = static_cast<sr_val_t *>(std::malloc(sizeof(sr_val_t)));
    // What the type does not fill holds no zeros to rely on.
    std::memset(made.value, 0xa5, sizeof *made.value);
    made.value->xpath = source->xpath ? exactCopy(*source->xpath) : nullptr;
    made.value->type = source->type;
    made.value->dflt = false;
    auto &data = made.value->data;
    if (std::holds_alternative<std::monostate>(source->data)) {
        std::memset(&data, 0, sizeof data);
    } else if (std::holds_alternative<NullString>(source->data)) {
        data.string_val = nullptr;
    } else if (const auto *text = std::get_if<std::string>(&source->data)) {
        data.string_val = made.text = exactCopy(*text);
    } else {
        const auto number = std::get<std::uint32_t>(source->data);
        if (source->type == SR_BOOL_T || source->type == SR_UINT8_T)
            data.uint8_val = static_cast<std::uint8_t>(number);
        else if (source->type == SR_UINT16_T)
            data.uint16_val = static_cast<std::uint16_t>(number);
        else
            data.uint32_val = number;
    }
    live.push_back(made);
    return made.value;
}

CmfContext *Run::use(const char *call, const void *ctx)
{
    if (ctx != nullptr && ctx == context.get())
        return context.get();
    wrong(std::string(call) + " with a context that is not open");
    return nullptr;
}

void *subscriptionContext()
{
    static char context;
    return &context;
}

void *untouched()
{
    static char slot;
    return &slot;
}

std::string EntryRun::pointerName(const void *pointer) const
{
    if (pointer == subscriptionContext())
        return "context";
    if (pointer == untouched())
        return "untouched";
    return pointer == nullptr ? "null" : "other";
}

Current::Current(Recorder &recorder) : previous_(current)
{
    current = &recorder;
}

Current::~Current()
{
    current = previous_;
}

void stop(const char *what)
{
    std::fprintf(stderr, "fake platform: %s\n", what);
    std::abort();
}

Recorder &recorder()
{
    if (current == nullptr)
        stop("called outside a run");
    return *current;
}

Run &run()
{
    auto *playing = dynamic_cast<Run *>(&recorder());
    if (playing == nullptr)
        stop("a callback's function was called from an entry point");
    return *playing;
}

EntryRun &entryRun()
{
    auto *running = dynamic_cast<EntryRun *>(&recorder());
    if (running == nullptr)
        stop("an entry point's function was called from a callback");
    return *running;
}

} // namespace aaanc::test
