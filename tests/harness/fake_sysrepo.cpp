// sysrepo, and the device's additions to it.
#include "device.hpp"
#include "fake_run.hpp"
#include "heap_watch.hpp"
#include "trace_text.hpp"

#include <algorithm>
#include <cstring>

using namespace aaanc::test;

int sr_subtree_change_subscribe(sr_session_ctx_t *session, const char *xpath,
                                sr_subtree_change_cb callback, void *private_ctx, uint32_t priority,
                                uint32_t opts, sr_subscription_ctx_t **subscription)
{
    const InPlatform here;
    EntryRun &running = entryRun();
    if (session != sessionOf(running))
        running.wrong("subscribe with another session");
    const std::size_t number = ++running.subscriptions;
    const bool fails = number == running.scenario.failing_subscription;
    const std::int32_t code = fails ? running.scenario.subscription_result : 0;

    std::string line = "subscribe ";
    appendQuoted(line, xpath);
    const auto &known = *running.known;
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
    *subscription = static_cast<sr_subscription_ctx_t *>(subscriptionContext());
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
    const InPlatform here;
    EntryRun &running = entryRun();
    if (session != sessionOf(running))
        running.wrong("unsubscribe with another session");
    running.recordResult("unsubscribe " + running.pointerName(subscription),
                         running.unsubscribe_result);
    return running.unsubscribe_result;
}

int sr_get_changes_iter(sr_session_ctx_t *session, const char *xpath, sr_change_iter_t **iter)
{
    const InPlatform here;
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
    const InPlatform here;
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
    const InPlatform here;
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
    const InPlatform here;
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
    const InPlatform here;
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
    const InPlatform here;
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
    const InPlatform here;
    const auto *playing = dynamic_cast<Run *>(&recorder()); // none in an entry point
    if (playing != nullptr && playing->scenario.strerror_null) {
        recorder().record("strerror " + std::to_string(code) + " -> null");
        return nullptr;
    }
    static thread_local std::string text;
    text = errorText(code);
    recorder().record("strerror " + std::to_string(code));
    return text.c_str();
}

int sr_convert_hexstring_to_string(const char *text, int size, char *out)
{
    const InPlatform here;
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
