#include "service.hpp"

#include <optional>

#include <fmt/format.h>

#include "aaa_service.hpp"
#include "reporter.hpp"

namespace aaanc
{

namespace
{

// What the client will find, as far as it is known here.
Answer answerIn(const Treatment &treatment)
{
    Answer answer{std::nullopt, "none"};
    if (const auto reply = unpackReply(treatment.packet)) {
        answer = answerOf({{}, CmfStep::Done, kCmfDone, *reply});
    } else if (!treatment.packet.empty()) {
        answer.text = "none: what is sent is no reply";
    }
    if (!treatment.rule.empty()) {
        answer.text += fmt::format(", misbehaving: {}", treatment.rule);
    }
    return answer;
}

} // namespace

int serveAlone(const ServiceOptions &options, TerminationGuard &guard)
{
    const std::unique_ptr<RecordWriter> writer = makeWriter(options.output, stdout);
    Reporter reporter(*writer);
    RequestHandler handler(options.misbehaviours);
    std::optional<ServiceSocket> service;
    guard.removeAtEnd([&] {
        service.emplace(
            options.socket,
            [&](const CmfRequest &request) {
                Treatment treatment = handler.treat(request);
                reporter.requested(request.parameter.data, answerIn(treatment));
                return treatment;
            },
            [&] { return handler.closesNext(); });
        return std::filesystem::absolute(options.socket);
    });
    if (handler.isAway()) {
        service->leave();
    }
    guard.endBy([&] { service->stop(); });
    service->serve();
    guard.endBy({});
    writer->state(handler.state());
    return guard.status();
}

} // namespace aaanc
