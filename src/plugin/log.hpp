// The log channel: two severities, gated by the daemon's log level, sent to the
// device's log sink.
//
// The level is read afresh at every line and tested before any argument is
// worked out. `function` is the name of the operation that logs, even where it
// is folded into another function. Arguments that do not fit their text do not
// compile: a text written at the log line is held by the sink's printf
// attribute, a text that stands in a table by AaaNcLogText.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "nlog.h"
#include "sysrepo.h"

// What every line starts with: severity, function, line number.
#define AAA_NC_LOG_PREFIX "[%s] (%s:%d) [AAA-NC]"

// A line whose text is written here.
#define AAA_NC_DBG(function, text, ...)                                                            \
    AAA_NC_DBG_SEND(function, AAA_NC_LOG_PREFIX text, __VA_ARGS__)
#define AAA_NC_ERR(function, text, ...)                                                            \
    AAA_NC_ERR_SEND(function, AAA_NC_LOG_PREFIX text, __VA_ARGS__)

// A line whose text is an AaaNcLogText.
#define AAA_NC_DBG_OF(function, text, ...)                                                         \
    AAA_NC_DBG_SEND(function, AAA_NC_FORMAT_OF(text, __VA_ARGS__), __VA_ARGS__)
#define AAA_NC_ERR_OF(function, text, ...)                                                         \
    AAA_NC_ERR_SEND(function, AAA_NC_FORMAT_OF(text, __VA_ARGS__), __VA_ARGS__)

// The two severities: when they are sent, their class and level, and their tag.
#define AAA_NC_DBG_SEND(...) AAA_NC_SEND(srp_ll_syslog >= 4, 7, 3, "DBG", __VA_ARGS__)
#define AAA_NC_ERR_SEND(...) AAA_NC_SEND(srp_ll_syslog != 0, 8, 4, "ERR", __VA_ARGS__)

#define AAA_NC_SEND(enabled, severityClass, level, tag, function, format, ...)                     \
    do {                                                                                           \
        if (enabled) {                                                                             \
            NLOG_Send(483, "PLUGIN", severityClass, level, format, tag, function, __LINE__,        \
                      __VA_ARGS__);                                                                \
        }                                                                                          \
    } while (false)

// The text's format, for arguments that it takes.
#define AAA_NC_FORMAT_OF(text, ...)                                                                \
    (sizeof((text).takes(__VA_ARGS__)) != 0 ? (text).format : nullptr)

// A text for a table of AaaNcLogText.
#define AAA_NC_LOG_TEXT(text) AAA_NC_LOG_PREFIX text

// The conversion that prints an argument of type T.
template <typename T> inline constexpr char aaaNcConversion = 0;
template <> inline constexpr char aaaNcConversion<const char *> = 's';
template <> inline constexpr char aaaNcConversion<std::int32_t> = 'd';
template <> inline constexpr char aaaNcConversion<std::uint32_t> = 'd';

// Whether `format` is the prefix and a text with one conversion for each of Args.
template <typename... Args> constexpr bool aaaNcLogTextFits(const char *format)
{
    for (const char *prefix = AAA_NC_LOG_PREFIX; *prefix != '\0'; ++prefix, ++format) {
        if (*format != *prefix) {
            return false;
        }
    }
    constexpr char conversions[] = {aaaNcConversion<Args>..., '\0'};
    const char *conversion = conversions;
    for (; *format != '\0'; ++format) {
        if (*format == '%' && *++format != *conversion++) {
            return false;
        }
    }
    return *conversion == '\0';
}

void aaaNcLogTextDoesNotFitItsArguments(); // never defined

// Whether an argument of type Given is passed on just as one of type T: nothing
// converts it on its way to the sink.
template <typename T, typename Given>
inline constexpr bool aaaNcPassesAs = std::is_same_v<Given, T>;
template <> inline constexpr bool aaaNcPassesAs<const char *, char *> = true;

// A text of a table, printed with arguments of types Args. Null where a handler
// has no such line.
template <typename... Args> struct AaaNcLogText {
    const char *format = nullptr;

    constexpr AaaNcLogText() = default;
    constexpr AaaNcLogText(const char *text) : format(text)
    {
        if (!aaaNcLogTextFits<Args...>(text)) {
            aaaNcLogTextDoesNotFitItsArguments();
        }
    }

    // Never defined; see AAA_NC_FORMAT_OF.
    template <typename... Given, typename = std::enable_if_t<(sizeof...(Given) == sizeof...(Args))>,
              typename = std::enable_if_t<(aaaNcPassesAs<Args, Given> && ...)>>
    char takes(Given... args) const;
};
