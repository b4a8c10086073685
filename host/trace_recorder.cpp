#include "trace_recorder.hpp"

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include "input_error.hpp"
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

TraceRecorder::TraceRecorder(const std::filesystem::path &file, DeliveryObserver &next)
    : path_(file), next_(next)
{
    const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        throw InputError(file.string(), 0, "", std::strerror(errno));
    }
    struct stat status {
    };
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        fchmod(descriptor, 0600);
    }
    file_.reset(fdopen(descriptor, "w"));
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

void TraceRecorder::finish()
{
    if (std::ferror(file_.get()) != 0) {
        throw std::runtime_error(
            fmt::format("{}: the recording is not complete", printable(path_.string())));
    }
}

void TraceRecorder::write(const std::string &text)
{
    std::fwrite(text.data(), 1, text.size(), file_.get());
    std::fflush(file_.get());
}

} // namespace aaanc
