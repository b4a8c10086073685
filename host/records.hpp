// What a run tells: one record for everything that happens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "cmf_client.hpp"
#include "messages.hpp"
#include "running_state.hpp"

namespace aaanc
{

enum class StageKind { Startup, Edit, Recording };

// A commit or the replay of a recording begins.
struct StageRecord {
    StageKind kind = StageKind::Edit;
    std::string file;        // empty for a start-up without configuration
    std::size_t changes = 0; // of the whole commit or recording
};

struct CallbackRecord {
    std::size_t number = 0; // 1, 2, ... through the run
    std::string_view subtree;
    std::uint32_t event = 0;
    std::size_t changes = 0;
    int result = 0; // once it has returned
};

// What the plug-in got for a request.
struct Answer {
    std::optional<std::uint32_t> result; // none without a well-formed reply
    std::string text;                    // the same for a reader
    std::string reason;                  // for a refusal, where the request shows it
};

// What to call a request whose block has been sent, but cannot be read.
constexpr std::string_view kTooShort = "shorter than a header";

struct RequestRecord {
    std::size_t number = 0;         // 1, 2, ... through the run
    std::size_t callback = 0;       // that sent it; 0 for none
    Bytes block;                    // the parameter block; empty when it was not encoded
    std::optional<Request> decoded; // none where the block is too short
    std::string_view undecoded;     // what to call it then
    Answer answer;
};

struct Summary {
    std::size_t commits = 0;
    std::size_t recordings = 0;
    std::size_t callbacks = 0;
    std::size_t failed_callbacks = 0;
    std::size_t requests = 0;
    std::size_t accepted = 0;   // answered 0
    std::size_t refused = 0;    // answered otherwise
    std::size_t unanswered = 0; // without a well-formed reply
};

// Writes records, each whole and at once.
class RecordWriter
{
public:
    virtual ~RecordWriter() = default;
    // The service listens at a socket, from now on.
    virtual void listening(std::string_view socket) = 0;
    virtual void stage(const StageRecord &record) = 0;
    virtual void callbackBegins(const CallbackRecord &record) = 0;
    virtual void request(const RequestRecord &record) = 0;
    virtual void callbackEnded(const CallbackRecord &record) = 0;
    // A commit has been refused, or the plug-in could not be initialised: why
    // the run ends early.
    virtual void stopped(std::string_view reason) = 0;
    // What the AAA service holds in the end.
    virtual void state(const RunningState &state) = 0;
    virtual void summary(const Summary &summary) = 0;
};

// "verify", "apply", "abort", "enabled"; "event 77" for one that sysrepo does not have.
std::string eventName(std::uint32_t event);
// What to call a request: "set accounting interval (type 5)".
std::string requestTitle(const Request &request);
Answer answerOf(const Exchange &exchange);

} // namespace aaanc
