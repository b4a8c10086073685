#include "trace_recorder.hpp"

#include <array>
#include <cstdio>

#include <fmt/format.h>

#include "printable.hpp"
#include "sysrepo.h"
#include "trace.hpp"

namespace aaanc
{

namespace
{

void replaceAll(std::string &text, std::string_view from, std::string_view to)
{
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

std::string escape(const std::optional<std::string> &plain)
{
    if (!plain) {
        return "\\N";
    }
    std::string text = printable(*plain);
    replaceAll(text, "|", "\\|");
    // What would end a value, or be cut off its end.
    replaceAll(text, " new=", "\\x20new=");
    if (text.ends_with(' ')) {
        text.replace(text.size() - 1, 1, "\\x20");
    }
    return text;
}

std::string valueText(const std::optional<Value> &value)
{
    return value ? fmt::format("{}|{}|{}", escape(value->xpath), value->type, escape(value->text))
                 : "-";
}

std::string operationText(std::uint32_t operation)
{
    constexpr std::array<const char *, 4> kNames = {"CREATED", "MODIFIED", "DELETED", "MOVED"};
    return operation < kNames.size() ? kNames[operation] : std::to_string(operation);
}

} // namespace

std::string traceOf(std::string_view subtree, std::uint32_t event, const ChangeRefs &changes)
{
    std::string text = fmt::format("callback {} event {}\n", escape(std::string(subtree)), event);
    for (const ChangeRef &ref : changes) {
        const Change change = ref.read();
        text += fmt::format("change {} old={} new={}\n", operationText(change.oper),
                            valueText(change.old_value), valueText(change.new_value));
    }
    return text;
}

TraceRecorder::TraceRecorder(const std::filesystem::path &file, TerminationGuard &guard,
                             DeliveryObserver &next)
    : file_(file, guard), next_(next)
{
    write("# Shared keys are in here as they were delivered.\n");
}

void TraceRecorder::callbackBegins(const Notification &notification)
{
    write(traceOf(notification.subtree, notification.event, *notification.changes));
    next_.callbackBegins(notification);
}

void TraceRecorder::callbackEnded(const Notification &notification, int result)
{
    if (result != 0) {
        write(fmt::format("# callback returned {}\n", result));
    }
    next_.callbackEnded(notification, result);
}

void TraceRecorder::write(const std::string &text)
{
    std::fwrite(text.data(), 1, text.size(), file_.stream());
    std::fflush(file_.stream());
}

} // namespace aaanc
