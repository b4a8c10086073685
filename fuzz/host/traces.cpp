// Recordings, as aaanc replay reads them.
#include <string>

#include "input_error.hpp"
#include "targets.hpp"
#include "texts.hpp"
#include "trace.hpp"

namespace aaanc::test::fuzz
{

namespace
{

std::string print(const Trace &trace)
{
    std::string text;
    for (const RecordedCallback &callback : trace.callbacks)
        text += traceOf(callback.subtree, callback.event, refsTo(callback.changes));
    return text;
}

} // namespace

std::string fuzzTrace(Bytes bytes)
{
    const std::string text = textOf(bytes);
    std::string printed;
    try {
        printed = print(readTrace(schema(), "trace.txt", text));
    } catch (const InputError &error) {
        return errorFinding(error.what(), "trace.txt", text);
    }
    try {
        return print(readTrace(schema(), "again.txt", printed)) == printed
                   ? ""
                   : "reads back as another: " + printed;
    } catch (const InputError &error) {
        return "does not read back: " + printed + ": " + error.what();
    }
}

} // namespace aaanc::test::fuzz
