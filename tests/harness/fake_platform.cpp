#include "fake_platform.hpp"

#include "device.hpp"
#include "trace_text.hpp"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

#include <dlfcn.h>

// The plug-in must find the functions below, whatever else is hidden.
#pragma GCC visibility push(default)
#include "platform/cmf.h"
#include "platform/gnl.h"
#include "platform/nlog.h"
#include "platform/sysrepo.h"
#pragma GCC visibility pop

namespace aaanc::test
{

namespace
{

constexpr char kLogPrefix[] = "[%s] (%s:%d) [AAA-NC]";
constexpr std::size_t kReadableReply = 4096;
constexpr std::size_t kParameterBlock = 1024;
// What a call that does not belong returns; the trace is WRONG by then anyway.
constexpr int kMisused = -1;

// Whoever uses this pointer uses an output that means nothing.
template <typename T> T *junkPointer()
{
    return reinterpret_cast<T *>(std::uintptr_t{0x5a5a5a50});
}

constexpr std::uint32_t kJunkNumber = 0x5a5a5a5a;

// A heap copy without a byte to spare, so that a sanitizer sees every overrun.
char *exactCopy(std::string_view text)
{
    auto *copy = static_cast<char *>(std::malloc(text.size() + 1));
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

// Overwrites before freeing, so that a late reader does not find the old text.
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

    virtual std::string pointerName(const void *pointer) const
    {
        return pointer == nullptr ? "null" : "unknown";
    }

    void record(std::string line)
    {
        trace.push_back(std::move(line));
        if (level_from_call != nullptr && !level_from_call->empty()) {
            const auto change = level_from_call->find(trace.size());
            if (change != level_from_call->end())
                setLogLevel(change->second);
        }
    }

    void recordResult(std::string line, std::int32_t code)
    {
        line += " -> ";
        line += std::to_string(code);
        record(std::move(line));
    }

    void wrong(const std::string &what)
    {
        record("WRONG " + what);
    }
};

// A value that the plug-in holds.
struct LiveValue {
    sr_val_t *value = nullptr;
    char *text = nullptr; // the string in the value's data
    const Value *source = nullptr;
    std::size_t change = 0; // 1-based
    bool is_old = false;
    std::vector<char *> key_copies;

    std::string name() const
    {
        return (is_old ? "old#" : "new#") + std::to_string(change);
    }

    void release() const
    {
        for (char *copy : key_copies)
            scribbleAndFree(copy);
        scribbleAndFree(text);
        scribbleAndFree(value->xpath);
        std::memset(value, 0xdd, sizeof *value);
        std::free(value);
    }
};

struct CmfContext {
    const Exchange *exchange = nullptr;
    void *reply = nullptr;

    CmfContext() = default;
    CmfContext(const CmfContext &) = delete;
    CmfContext &operator=(const CmfContext &) = delete;
    ~CmfContext()
    {
        std::free(reply);
    }
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
    ~Run() override
    {
        for (const LiveValue &held : live)
            held.release();
    }

    std::string pointerName(const void *pointer) const override
    {
        for (const LiveValue &held : live)
            if (held.value == pointer)
                return held.name();
        return Recorder::pointerName(pointer);
    }

    LiveValue *ownerOf(const char *xpath)
    {
        for (LiveValue &held : live)
            if (xpath != nullptr && held.value->xpath == xpath)
                return &held;
        return nullptr;
    }

    sr_val_t *deliver(const std::optional<Value> &source, bool is_old);
    CmfContext *use(const char *call, const void *ctx);
};

thread_local Recorder *current = nullptr;

// Makes a recorder the thread's current one for a while.
class Current
{
public:
    explicit Current(Recorder &recorder) : previous_(current)
    {
        current = &recorder;
    }
    ~Current()
    {
        current = previous_;
    }
    Current(const Current &) = delete;
    Current &operator=(const Current &) = delete;

private:
    Recorder *previous_;
};

[[noreturn]] void stop(const char *what)
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

std::uint32_t word(const void *record, std::size_t index)
{
    std::uint32_t value = 0;
    std::memcpy(&value, static_cast<const char *>(record) + 4 * index, sizeof value);
    return value;
}

std::string hexWord(std::uint32_t value)
{
    char text[9];
    std::snprintf(text, sizeof text, "%08x", value);
    return text;
}

void appendHex(std::string &line, const void *data, std::size_t length)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    const auto *bytes = static_cast<const unsigned char *>(data);
    for (std::size_t at = 0; at < length; ++at) {
        line += kDigits[bytes[at] >> 4];
        line += kDigits[bytes[at] & 0xf];
    }
}

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

char subscription_context; // its address is what the plug-in gets
void *const kUntouched = &plugin;

// One call of an entry point.
struct EntryRun final : Recorder {
    const InitScenario &scenario;
    char session = 0;
    std::size_t subscriptions = 0;
    std::int32_t unsubscribe_result = 0;
    std::vector<sr_subtree_change_cb> *capture = nullptr;
    void *private_context = kUntouched;

    explicit EntryRun(const InitScenario &what) : scenario(what) {}

    std::string pointerName(const void *pointer) const override
    {
        if (pointer == &subscription_context)
            return "context";
        if (pointer == kUntouched)
            return "untouched";
        return pointer == nullptr ? "null" : "other";
    }
};

EntryRun &entryRun()
{
    auto *running = dynamic_cast<EntryRun *>(&recorder());
    if (running == nullptr)
        stop("an entry point's function was called from a callback");
    return *running;
}

template <typename T> sr_session_ctx_t *sessionOf(T &running)
{
    return reinterpret_cast<sr_session_ctx_t *>(&running.session);
}

Trace runInit(const InitScenario &scenario, std::vector<sr_subtree_change_cb> *capture)
{
    EntryRun running(scenario);
    running.capture = capture;
    const Current use(running);
    setLogLevel(scenario.log_level);
    const int result = plugin.init(sessionOf(running), &running.private_context);
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
    const int result =
        plugin.callbacks[index](sessionOf(playing), xpath.get(), scenario.event, nullptr);
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
    plugin.cleanup(sessionOf(running), &subscription_context);
    return std::move(running.trace);
}

const int *pluginInteger(const char *name)
{
    return static_cast<const int *>(dlsym(plugin.handle, name));
}

} // namespace aaanc::test

// ---- The platform's own names ----------------------------------------------

using namespace aaanc::test;

int srp_ll_syslog = 0;

// sysrepo

int sr_subtree_change_subscribe(sr_session_ctx_t *session, const char *xpath,
                                sr_subtree_change_cb callback, void *private_ctx, uint32_t priority,
                                uint32_t opts, sr_subscription_ctx_t **subscription)
{
    EntryRun &running = entryRun();
    if (session != sessionOf(running))
        running.wrong("subscribe with another session");
    const std::size_t number = ++running.subscriptions;
    const bool fails = number == running.scenario.failing_subscription;
    const std::int32_t code = fails ? running.scenario.subscription_result : 0;

    std::string line = "subscribe ";
    appendQuoted(line, xpath);
    const auto &known = plugin.callbacks;
    const auto row = std::find(known.begin(), known.end(), callback);
    line += " callback#";
    line += row == known.end() ? "?" : std::to_string(row - known.begin() + 1);
    line += " private " + running.pointerName(private_ctx);
    line += " priority " + std::to_string(priority);
    line += " opts " + std::to_string(opts);
    line += " into " + running.pointerName(*subscription);
    running.recordResult(std::move(line), code);

    if (code != 0)
        return code;
    *subscription = reinterpret_cast<sr_subscription_ctx_t *>(&subscription_context);
    if (running.capture != nullptr)
        running.capture->push_back(callback);
    if (running.scenario.during_subscribe) {
        running.scenario.during_subscribe(number);
        setLogLevel(running.scenario.log_level);
    }
    return 0;
}

int sr_unsubscribe(sr_session_ctx_t *session, sr_subscription_ctx_t *subscription)
{
    EntryRun &running = entryRun();
    if (session != sessionOf(running))
        running.wrong("unsubscribe with another session");
    running.recordResult("unsubscribe " + running.pointerName(subscription),
                         running.unsubscribe_result);
    return running.unsubscribe_result;
}

int sr_get_changes_iter(sr_session_ctx_t *session, const char *xpath, sr_change_iter_t **iter)
{
    Run &playing = run();
    if (session != sessionOf(playing))
        playing.wrong("changes-iter with another session");
    if (playing.iterator)
        playing.wrong("changes-iter while another iterator is open");
    std::string line = "changes-iter ";
    appendQuoted(line, xpath);
    const std::int32_t code = playing.scenario.changes_iter;
    playing.recordResult(std::move(line), code);
    if (code != 0) {
        *iter = junkPointer<sr_change_iter_t>();
    } else {
        playing.iterator = std::make_unique<char>();
        *iter = reinterpret_cast<sr_change_iter_t *>(playing.iterator.get());
    }
    return code;
}

int sr_get_change_next(sr_session_ctx_t *session, sr_change_iter_t *iter, sr_change_oper_t *oper,
                       sr_val_t **old_value, sr_val_t **new_value)
{
    Run &playing = run();
    const Scenario &scenario = playing.scenario;
    if (session != sessionOf(playing))
        playing.wrong("next with another session");
    if (iter == nullptr || static_cast<void *>(iter) != playing.iterator.get()) {
        playing.wrong("next with an iterator that is not open");
        return SR_ERR_NO_MORE_CHANGES;
    }

    std::int32_t code = 0;
    const auto failing = scenario.next_result.find(++playing.next_calls);
    if (failing != scenario.next_result.end())
        code = failing->second;
    else if (playing.delivered == scenario.changes.size())
        code = scenario.end_of_changes;
    if (code != 0) {
        *oper = kJunkNumber;
        *old_value = junkPointer<sr_val_t>();
        *new_value = junkPointer<sr_val_t>();
        playing.recordResult("next", code);
        return code;
    }
    if (playing.delivered == scenario.changes.size())
        stop("a walk without an end: the end of the changes is reported with 0");

    const Change &change = scenario.changes[playing.delivered++];
    *oper = change.oper;
    *old_value = playing.deliver(change.old_value, true);
    *new_value = playing.deliver(change.new_value, false);
    playing.record("next -> 0 oper " + std::to_string(change.oper));
    return 0;
}

void sr_free_change_iter(sr_change_iter_t *iter)
{
    Run &playing = run();
    if (iter == nullptr || static_cast<void *>(iter) != playing.iterator.get()) {
        playing.wrong("free-iter of an iterator that is not open");
        return;
    }
    playing.iterator.reset();
    playing.record("free-iter");
}

void sr_free_val(sr_val_t *value)
{
    Run &playing = run();
    if (value == nullptr) {
        playing.record("free null");
        return;
    }
    const auto held = std::find_if(playing.live.begin(), playing.live.end(),
                                   [&](const LiveValue &known) { return known.value == value; });
    if (held == playing.live.end()) {
        playing.wrong("free of a value that is not held");
        return;
    }
    std::string line = "free " + held->name();
    held->release();
    playing.live.erase(held);
    playing.record(std::move(line));
}

char *sr_xpath_node_name(const char *xpath)
{
    Run &playing = run();
    LiveValue *owner = playing.ownerOf(xpath);
    if (owner == nullptr) {
        playing.wrong("node-name of what is no xpath of a value held");
        return nullptr;
    }
    char *whole = owner->value->xpath;
    std::optional<std::size_t> offset;
    if (playing.scenario.node_name_null.count(++playing.node_name_calls) == 0)
        offset = nodeNameOffset(whole);
    char *name = offset ? whole + *offset : nullptr;
    std::string line = "node-name ";
    appendQuoted(line, xpath);
    line += " -> ";
    appendQuoted(line, name);
    playing.record(std::move(line));
    return name;
}

char *sr_xpath_key_value(char *xpath, const char *node_name, const char *key_name,
                         sr_xpath_ctx_t *state)
{
    Run &playing = run();
    LiveValue *owner = playing.ownerOf(xpath);
    if (owner == nullptr) {
        playing.wrong("key of what is no xpath of a value held");
        return nullptr;
    }
    if (state == nullptr || state->begining != nullptr || state->current_node != nullptr ||
        state->replaced_position != nullptr || state->replaced_char != 0)
        playing.wrong("key with a parsing state that is not zeroed");
    else
        std::memset(state, 0x5a, sizeof *state);

    std::string line = "key ";
    appendQuoted(line, node_name);
    line += ' ';
    appendQuoted(line, key_name);
    line += " in ";
    appendQuoted(line, xpath);
    line += " -> ";

    char *value = nullptr;
    if (playing.scenario.key_null.count(++playing.key_calls) == 0) {
        // Looked up in the whole xpath, however often this one has been cut.
        const std::string &whole = *owner->source->xpath;
        if (const auto place = findKey(whole, node_name, key_name)) {
            if (playing.scenario.cuts_xpath) {
                value = xpath + place->offset;
                value[place->length] = '\0';
            } else {
                value = exactCopy(std::string_view(whole).substr(place->offset, place->length));
                owner->key_copies.push_back(value);
            }
        }
    }
    appendQuoted(line, value);
    playing.record(std::move(line));
    return value;
}

const char *sr_strerror(int code)
{
    static thread_local std::string text;
    text = errorText(code);
    recorder().record("strerror " + std::to_string(code));
    return text.c_str();
}

int sr_convert_hexstring_to_string(const char *text, int size, char *out)
{
    Run &playing = run();
    if (text == nullptr || out == nullptr || size <= 0) {
        playing.wrong("unhex without a text or a buffer");
        return kUnhexRefused;
    }
    const auto room = static_cast<std::size_t>(size);
    if (std::any_of(out, out + room, [](char byte) { return byte != '\0'; }))
        playing.wrong("unhex into a buffer that is not zeroed");

    std::int32_t code = 0;
    const auto failing = playing.scenario.unhex_result.find(++playing.unhex_calls);
    std::optional<std::string> bytes;
    if (failing != playing.scenario.unhex_result.end())
        code = failing->second;
    else if (!(bytes = unhex(text, room)))
        code = kUnhexRefused;
    else
        std::memcpy(out, bytes->data(), bytes->size()); // no terminator of its own

    std::string line = "unhex ";
    appendQuoted(line, text);
    playing.recordResult(line + ' ' + std::to_string(size), code);
    return code;
}

// The string library and the log sink

size_t gnl_strlcpy(char *dst, const char *src, size_t size)
{
    Run &playing = run();
    if (dst == nullptr || src == nullptr || size == 0) {
        playing.wrong("strlcpy without a source or a destination");
        return 0;
    }
    std::string line = "strlcpy ";
    appendQuoted(line, src);
    playing.record(line + ' ' + std::to_string(size));
    const std::size_t length = std::strlen(src);
    const std::size_t copied = std::min(length, size - 1);
    std::memcpy(dst, src, copied);
    dst[copied] = '\0';
    return length;
}

int NLOG_Send(int facility, const char *module, int severity_class, int level, const char *format,
              ...)
{
    Recorder &running = recorder();
    const std::size_t prefix_length = sizeof kLogPrefix - 1;
    if (std::strncmp(format, kLogPrefix, prefix_length) != 0) {
        std::string line = "log format without the prefix: ";
        appendQuoted(line, format);
        running.wrong(line);
        return 0;
    }

    va_list args;
    va_start(args, format);
    const std::string severity = va_arg(args, const char *);
    const char *function = va_arg(args, const char *);
    const int source_line = va_arg(args, int);
    std::string text;
    for (const char *at = format + prefix_length; *at != '\0'; ++at) {
        if (*at != '%') {
            text += *at;
            continue;
        }
        switch (*++at) {
        case '%':
            text += '%';
            break;
        case 's': {
            const char *argument = va_arg(args, const char *);
            text += argument == nullptr ? "(null)" : argument;
            break;
        }
        case 'd':
            text += std::to_string(va_arg(args, int));
            break;
        case 'p':
            text += running.pointerName(va_arg(args, const void *));
            break;
        default: {
            va_end(args);
            std::string line = "log format with a conversion of its own: ";
            appendQuoted(line, format);
            running.wrong(line);
            return 0;
        }
        }
    }
    va_end(args);

    const bool is_debug = severity == "DBG";
    if ((!is_debug && severity != "ERR") || facility != 483 || std::strcmp(module, "PLUGIN") != 0 ||
        severity_class != (is_debug ? 7 : 8) || level != (is_debug ? 3 : 4))
        running.wrong("log channel numbers: " + std::to_string(facility) + ' ' + module + ' ' +
                      std::to_string(severity_class) + ' ' + std::to_string(level) + ' ' +
                      severity);
    if (source_line <= 0)
        running.wrong("log line number " + std::to_string(source_line));

    std::string line = "log " + severity + ' ' + function + ' ';
    appendQuoted(line, text);
    running.record(std::move(line));
    return 0;
}

// CMF

int CMF_ClientServiceReg(const char *service, const void *record)
{
    EntryRun &running = entryRun();
    std::string line = "register ";
    appendQuoted(line, service);
    line += ' ' + hexWord(word(record, 0)) + ' ' + hexWord(word(record, 1));
    line += " private " + running.pointerName(running.private_context);
    running.recordResult(std::move(line), running.scenario.registration_result);
    return running.scenario.registration_result;
}

void *CMF_ClientContextInit(const char *service, uint32_t client, uint32_t third)
{
    static const Exchange kAccepted;
    Run &playing = run();
    if (playing.context)
        playing.wrong("cmf-init while another context is open");
    const auto &exchanges = playing.scenario.exchanges;
    const auto found = exchanges.find(++playing.requests);
    const Exchange &exchange = found == exchanges.end() ? kAccepted : found->second;

    std::string line = "cmf-init ";
    appendQuoted(line, service);
    line += ' ' + std::to_string(client) + ' ' + std::to_string(third);
    line += exchange.null_context ? " -> null" : " -> ok";
    playing.record(std::move(line));
    if (exchange.null_context)
        return nullptr;
    playing.context = std::make_unique<CmfContext>();
    playing.context->exchange = &exchange;
    return playing.context.get();
}

int CMF_ClientContextObjSet(void *ctx, const void *record)
{
    Run &playing = run();
    const CmfContext *context = playing.use("cmf-object", ctx);
    if (context == nullptr)
        return kMisused;
    playing.recordResult("cmf-object " + std::to_string(word(record, 0)) + ' ' +
                             std::to_string(word(record, 1)) + ' ' +
                             std::to_string(word(record, 2)),
                         context->exchange->object_set);
    return context->exchange->object_set;
}

int CMF_ClientParamEncode(void *ctx, uint32_t kind, uint32_t length, const void *data)
{
    Run &playing = run();
    const CmfContext *context = playing.use("cmf-encode", ctx);
    if (context == nullptr)
        return kMisused;
    if (length > kParameterBlock) {
        playing.wrong("cmf-encode of " + std::to_string(length) + " bytes");
        return kMisused;
    }
    std::string line = "cmf-encode " + std::to_string(kind) + ' ' + std::to_string(length) + ' ';
    line.reserve(line.size() + 2 * length + 8);
    appendHex(line, data, length);
    playing.recordResult(std::move(line), context->exchange->encode);
    return context->exchange->encode;
}

int CMF_ClientRequestSend(void *ctx)
{
    Run &playing = run();
    const CmfContext *context = playing.use("cmf-send", ctx);
    if (context == nullptr)
        return kMisused;
    playing.recordResult("cmf-send", context->exchange->send);
    return context->exchange->send;
}

int CMF_ClientResponseRecv(void *ctx)
{
    Run &playing = run();
    const CmfContext *context = playing.use("cmf-receive", ctx);
    if (context == nullptr)
        return kMisused;
    playing.recordResult("cmf-receive", context->exchange->receive);
    return context->exchange->receive;
}

int CMF_ClientParamDecode(void *ctx, uint32_t *kind, uint32_t *length, void **data)
{
    Run &playing = run();
    CmfContext *context = playing.use("cmf-decode", ctx);
    if (context == nullptr)
        return kMisused;
    if (*kind != 0 || *length != 0 || *data != nullptr)
        playing.wrong("cmf-decode with outputs that are not zeroed");
    const std::int32_t code = context->exchange->decode;
    playing.recordResult("cmf-decode", code);
    if (code != 0) {
        *kind = *length = kJunkNumber;
        *data = junkPointer<void>();
        return code;
    }
    const Reply &reply = context->exchange->reply;
    const std::size_t readable = std::min<std::size_t>(reply.decoded_length, kReadableReply);
    std::free(context->reply);
    context->reply = reply.null_data ? nullptr : std::calloc(1, readable);
    if (!reply.null_data) {
        const std::uint32_t header[] = {reply.result, reply.length_field};
        std::memcpy(context->reply, header, std::min(readable, sizeof header));
    }
    *kind = kJunkNumber;
    *length = reply.decoded_length;
    *data = context->reply;
    return 0;
}

void CMF_ClientContextClose(void *ctx)
{
    Run &playing = run();
    if (playing.use("cmf-close", ctx) == nullptr)
        return;
    playing.context.reset();
    playing.record("cmf-close");
}
