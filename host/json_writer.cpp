#include <string>

#include <nlohmann/json.hpp>

#include "hex.hpp"
#include "request_text.hpp"
#include "standard_streams.hpp"
#include "writers.hpp"

namespace aaanc
{

namespace
{

using Json = nlohmann::ordered_json;

class JsonWriter : public RecordWriter
{
public:
    JsonWriter(const OutputOptions &options, std::FILE *output) : options_(options), output_(output)
    {
        write({{"record", "run"}, {"format", kJsonFormat}});
    }

    void listening(std::string_view socket) override
    {
        write({{"record", "listening"}, {"socket", socket}});
    }

    void stage(const StageRecord &record) override
    {
        write({{"record", "stage"},
               {"stage", record.kind == StageKind::Edit        ? "edit"
                         : record.kind == StageKind::Recording ? "recording"
                                                               : "startup"},
               {"file", record.file.empty() ? Json() : Json(record.file)},
               {"changes", record.changes}});
    }

    void callbackBegins(const CallbackRecord & /*record*/) override {} // told when it has ended

    void request(const RequestRecord &record) override
    {
        Json line = {{"record", "request"},
                     {"number", record.number},
                     {"callback", record.callback == 0 ? Json() : Json(record.callback)}};
        if (record.decoded) {
            addRequest(line, *record.decoded, options_.show_keys);
        }
        line["answer"] = {{"result", record.answer.result ? Json(*record.answer.result) : Json()},
                          {"text", record.answer.text}};
        if (!record.answer.reason.empty()) {
            line["answer"]["reason"] = record.answer.reason;
        }
        if (options_.hex) {
            line["hex"] = hexText(record.block, [&](std::size_t offset) {
                return !options_.show_keys && record.decoded &&
                       isSecret(record.decoded->layout, offset);
            });
        }
        write(line);
    }

    void callbackEnded(const CallbackRecord &record) override
    {
        write({{"record", "callback"},
               {"number", record.number},
               {"subtree", record.subtree},
               {"event", eventName(record.event)},
               {"changes", record.changes},
               {"result", record.result}});
    }

    void stopped(std::string_view reason) override
    {
        write({{"record", "stopped"}, {"reason", reason}});
    }

    void state(const RunningState &state) override
    {
        Json objects = Json::array();
        for (const auto &[object, kept] : state.objects()) {
            Json told = {{"request", kept.number}};
            addRequest(told, kept.request, options_.show_keys);
            objects.push_back(std::move(told));
        }
        write({{"record", "state"}, {"objects", std::move(objects)}});
    }

    void summary(const Summary &summary) override
    {
        write({{"record", "summary"},
               {"edits", summary.commits},
               {"recordings", summary.recordings},
               {"callbacks", summary.callbacks},
               {"failed_callbacks", summary.failed_callbacks},
               {"requests", summary.requests},
               {"accepted", summary.accepted},
               {"refused", summary.refused},
               {"unanswered", summary.unanswered}});
    }

private:
    void write(const Json &line)
    {
        // A text that is not UTF-8 has its odd bytes replaced; its bytes are in "hex".
        writeOutput(output_, line.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
    }

    OutputOptions options_;
    std::FILE *output_;
};

} // namespace

std::unique_ptr<RecordWriter> makeJsonWriter(const OutputOptions &options, std::FILE *output)
{
    return std::make_unique<JsonWriter>(options, output);
}

} // namespace aaanc
