// The device's string library and its log sink.
#include "fake_run.hpp"
#include "heap_watch.hpp"
#include "trace_text.hpp"

#include <algorithm>
#include <cstdarg>
#include <cstring>

using namespace aaanc::test;

namespace
{

constexpr char kLogPrefix[] = "[%s] (%s:%d) [AAA-NC]";

} // namespace

size_t gnl_strlcpy(char *dst, const char *src, size_t size)
{
    const InPlatform here;
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
    const InPlatform here;
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
