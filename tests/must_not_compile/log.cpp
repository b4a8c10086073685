// Log lines whose text and arguments do not fit. Each case is compiled alone
// and must fail; without a case the file compiles.
#include "plugin/log.hpp"

using EntryText = AaaNcLogText<const char *, std::uint32_t>;

#if defined(TEXT_OF_A_LINE_WANTS_A_STRING)
void logLine(int code)
{
    AAA_NC_ERR("f", "Code %s.", code);
}
#elif defined(TEXT_OF_A_LINE_WANTS_ONE_MORE)
void logLine(int code)
{
    AAA_NC_DBG("f", "Code %d of %d.", code);
}
#elif defined(TEXT_OF_A_LINE_WANTS_ONE_LESS)
void logLine(int code)
{
    AAA_NC_DBG("f", "Code.", code);
}
#elif defined(TEXT_OF_A_TABLE_WANTS_A_NUMBER_FIRST)
constexpr EntryText kText = AAA_NC_LOG_TEXT("Config: path %d, notify event %d.");
#elif defined(TEXT_OF_A_TABLE_WANTS_ONE_MORE)
constexpr EntryText kText = AAA_NC_LOG_TEXT("Config: path %s, notify event %d, %d.");
#elif defined(TEXT_OF_A_TABLE_WANTS_ONE_LESS)
constexpr EntryText kText = AAA_NC_LOG_TEXT("Config: path %s.");
#elif defined(TEXT_OF_A_TABLE_HAS_NO_PREFIX)
constexpr EntryText kText = "Config: path %s, notify event %d.";
#elif defined(TEXT_OF_A_TABLE_ENDS_IN_A_PERCENT_SIGN)
constexpr EntryText kText = AAA_NC_LOG_TEXT("Config: path %s, notify event %");
#elif defined(LINE_OF_A_TABLE_WANTS_ONE_MORE)
void logLine(const EntryText &text, const char *xpath)
{
    AAA_NC_DBG_OF("f", text, xpath);
}
#elif defined(LINE_OF_A_TABLE_WANTS_A_STRING)
void logLine(const EntryText &text, std::uint32_t event)
{
    AAA_NC_DBG_OF("f", text, event, event);
}
#elif defined(LINE_OF_A_TABLE_WANTS_32_BITS)
void logLine(const EntryText &text, const char *xpath, std::uint64_t event)
{
    AAA_NC_DBG_OF("f", text, xpath, event);
}
#elif defined(LINE_OF_A_TABLE_WANTS_A_WHOLE_NUMBER)
void logLine(const EntryText &text, const char *xpath, double event)
{
    AAA_NC_DBG_OF("f", text, xpath, event);
}
#elif defined(LINE_OF_A_TABLE_WANTS_A_POINTER)
void logLine(const EntryText &text, std::uint32_t event)
{
    AAA_NC_DBG_OF("f", text, 0, event);
}
#elif defined(LINE_OF_A_TABLE_WANTS_NOTHING_TO_CONVERT)
struct Path {
    operator const char *() const;
};
void logLine(const EntryText &text, const Path &xpath, std::uint32_t event)
{
    AAA_NC_DBG_OF("f", text, xpath, event);
}
#else
constexpr EntryText kText = AAA_NC_LOG_TEXT("Config: path %s, notify event %d.");

void logLine(const char *xpath, char *leaf, std::uint32_t event, int code)
{
    AAA_NC_DBG_OF("f", kText, xpath, event);
    AAA_NC_DBG_OF("f", kText, leaf, event);
    AAA_NC_DBG_OF("f", kText, "text", event);
    AAA_NC_ERR("f", "Code %d.", code);
}
#endif
