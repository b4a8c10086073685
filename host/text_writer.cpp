#include <string>

#include <fmt/color.h>
#include <fmt/format.h>

#include "hex.hpp"
#include "printable.hpp"
#include "request_text.hpp"
#include "standard_streams.hpp"
#include "state_tables.hpp"
#include "terminal.hpp"
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
    TextWriter(const OutputOptions &options, std::FILE *output)
        : options_(options), output_(output), coloured_(wantsColours(output))
    {
    }

    void listening(std::string_view socket) override
    {
        write(fmt::format("Listening at {}.\n", printable(socket)));
    }

    void stage(const StageRecord &record) override
    {
        const std::string name = record.kind == StageKind::Edit        ? "Edit " + record.file
                                 : record.kind == StageKind::Recording ? "Recording " + record.file
                                 : record.file.empty() ? "Start-up without configuration"
                                                       : "Start-up configuration " + record.file;
        write(styled(fmt::emphasis::bold, printable(name)) +
              fmt::format(": {}\n", count(record.changes, "change")));
    }

    // The line stays open until it is known whether requests follow.
    void callbackBegins(const CallbackRecord &record) override
    {
        line_open_ = !options_.log_lines;
        write(fmt::format("  {} {}, {}{}", record.subtree, eventName(record.event),
                          count(record.changes, "change"), line_open_ ? "" : "\n"));
    }

    void request(const RequestRecord &record) override
    {
        std::string text = closeLine();
        text += fmt::format("    request {}: {}\n", record.number,
                            record.decoded ? requestTitle(*record.decoded) : record.undecoded);
        if (record.decoded) {
            text += requestRows(*record.decoded, options_.show_keys);
        }
        text += requestRow("answer",
                           styled(record.answer.result == 0U ? kGood : kBad, record.answer.text));
        if (!record.answer.reason.empty()) {
            text += requestRow("reason", record.answer.reason);
        }
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
        std::string result = fmt::format("returned {}", record.result);
        result = (record.result == 0 ? result : styled(kBad, result)) + "\n";
        write(line_open_ ? ": " + result : "    " + result);
        line_open_ = false;
    }

    void stopped(std::string_view reason) override
    {
        write(closeLine() + styled(kBad, printable(reason)) + "\n");
    }

    void state(const RunningState &state) override
    {
        std::string text = styled(fmt::emphasis::bold, "State of the AAA service") +
                           fmt::format(": {}\n", count(state.objects().size(), "object"));
        for (const StateTable &each : stateTables(state, options_.show_keys)) {
            text += fmt::format("  {}\n", each.title);
            text += formatTable(each.table, "    ", widthOf(output_), coloured_);
        }
        write(text);
    }

    void summary(const Summary &summary) override
    {
        write(fmt::format(
            "Summary: {}, {}, {} ({} accepted, {} refused, {} unanswered). {}\n",
            summary.recordings != 0 ? count(summary.recordings, "recording")
                                    : count(summary.commits, "edit"),
            count(summary.callbacks, "callback"), count(summary.requests, "request"),
            summary.accepted, summary.refused, summary.unanswered,
            summary.failed_callbacks == 0
                ? styled(kGood, "All callbacks returned 0.")
                : styled(kBad,
                         fmt::format("{} failed.", count(summary.failed_callbacks, "callback")))));
    }

private:
    static constexpr fmt::text_style kGood = fmt::fg(fmt::terminal_color::green);
    static constexpr fmt::text_style kBad = fmt::fg(fmt::terminal_color::red);

    [[nodiscard]] std::string styled(fmt::text_style style, const std::string &text) const
    {
        return coloured_ ? fmt::format(style, "{}", text) : text;
    }

    std::string closeLine()
    {
        const std::string end = line_open_ ? "\n" : "";
        line_open_ = false;
        return end;
    }

    void write(std::string_view text)
    {
        writeOutput(output_, text);
    }

    OutputOptions options_;
    std::FILE *output_;
    bool coloured_;
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
