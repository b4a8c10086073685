#include <string>

#include <fmt/format.h>

#include "hex.hpp"
#include "printable.hpp"
#include "request_text.hpp"
#include "writers.hpp"

namespace aaanc
{

namespace
{

std::string count(std::size_t number, std::string_view what)
{
    return fmt::format("{} {}{}", number, what, number == 1 ? "" : "s");
}

class TextWriter : public RecordWriter
{
public:
    TextWriter(const OutputOptions &options, std::FILE *output) : options_(options), output_(output)
    {
    }

    void stage(const StageRecord &record) override
    {
        const std::string name = record.kind == StageKind::Edit ? "Edit " + record.file
                                 : record.file.empty()          ? "Start-up without configuration"
                                                       : "Start-up configuration " + record.file;
        write(fmt::format("{}: {}\n", printable(name), count(record.changes, "change")));
    }

    // The line stays open until it is known whether requests follow.
    void callbackBegins(const CallbackRecord &record) override
    {
        line_open_ = true;
        write(fmt::format("  {} {}, {}", record.subtree, eventName(record.event),
                          count(record.changes, "change")));
    }

    void request(const RequestRecord &record) override
    {
        std::string text = closeLine();
        text += fmt::format("    request {}: {}\n", record.number,
                            record.decoded ? requestTitle(*record.decoded) : "not sent");
        if (record.decoded) {
            text += requestRows(*record.decoded, options_.show_keys);
        }
        text += requestRow("answer", record.answer.text);
        if (options_.hex && !record.block.empty()) {
            text += hexDump(record.block, "      ", [&](std::size_t offset) {
                return !options_.show_keys && record.decoded &&
                       isSecret(record.decoded->layout, offset);
            });
        }
        write(text);
    }

    void callbackEnded(const CallbackRecord &record) override
    {
        const std::string result = fmt::format("returned {}\n", record.result);
        write(line_open_ ? ": " + result : "    " + result);
        line_open_ = false;
    }

    void stopped(std::string_view reason) override
    {
        write(closeLine() + printable(reason) + "\n");
    }

    void summary(const Summary &summary) override
    {
        write(fmt::format(
            "Summary: {}, {}, {} ({} accepted, {} refused, {} unanswered). {}\n",
            count(summary.commits, "edit"), count(summary.callbacks, "callback"),
            count(summary.requests, "request"), summary.accepted, summary.refused,
            summary.unanswered,
            summary.failed_callbacks == 0
                ? "All callbacks returned 0."
                : fmt::format("{} failed.", count(summary.failed_callbacks, "callback"))));
    }

private:
    std::string closeLine()
    {
        const std::string end = line_open_ ? "\n" : "";
        line_open_ = false;
        return end;
    }

    void write(std::string_view text)
    {
        std::fwrite(text.data(), 1, text.size(), output_);
        std::fflush(output_);
    }

    OutputOptions options_;
    std::FILE *output_;
    bool line_open_ = false;
};

} // namespace

std::unique_ptr<RecordWriter> makeTextWriter(const OutputOptions &options, std::FILE *output)
{
    return std::make_unique<TextWriter>(options, output);
}

std::unique_ptr<RecordWriter> makeWriter(const OutputOptions &options, std::FILE *output)
{
    return options.json ? makeJsonWriter(options, output) : makeTextWriter(options, output);
}

} // namespace aaanc
