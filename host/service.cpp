#include "service.hpp"

#include <optional>

#include <fmt/format.h>

#include "aaa_service.hpp"
#include "reporter.hpp"

namespace aaanc
{

namespace
{

std::string misbehaving(const std::string &rule)
{
    return ", misbehaving: " + rule;
}

// What the client will find, as far as it is known here.
Answer answerIn(const CmfRequest &request, const Treatment &treatment)
{
    Answer answer{std::nullopt, "none", {}};
    if (const auto reply = unpackReply(treatment.packet)) {
        answer = answerOf({request, CmfStep::Done, kCmfDone, {}, *reply});
    } else if (!treatment.packet.empty()) {
        answer.text = "none: what is sent is no reply";
    }
    if (!treatment.rule.empty()) {
        answer.text += misbehaving(treatment.rule);
    }
    return answer;
}

} // namespace

int serveAlone(const ServiceOptions &options, TerminationGuard &guard)
{
    const std::unique_ptr<RecordWriter> writer = makeWriter(options.output, stdout);
    Reporter reporter(*writer);
    RequestHandler handler(options.misbehaviours);
    const auto answer = [&](const CmfRequest &request) {
        Treatment treatment = handler.treat(request);
        reporter.requested(request.parameter.data, answerIn(request, treatment), kTooShort);
        return treatment;
    };
    const auto closes_next = [&] {
        const Misbehaviour *rule = handler.closesNext();
        if (rule != nullptr) {
            reporter.requested({}, {std::nullopt, "none" + misbehaving(rule->text), {}},
                               "not read");
        }
        return rule != nullptr;
    };
    const auto malformed = [&](const Bytes &packet) {
        handler.countMalformed();
        Answer refusal = answerOf({{}, CmfStep::Done, kCmfDone, {}, makeReply(kServiceMalformed)});
        refusal.reason = fmt::format("a packet of {} bytes, which is no object record with a "
                                     "parameter of the length that it says",
                                     packet.size());
        reporter.requested({}, refusal, "no request");
    };
    std::optional<ServiceSocket> service;
    guard.removeAtEnd([&] {
        service.emplace(options.socket, answer, closes_next, malformed);
        return [file = service->file()] { file.remove(); };
    });
    guard.endBy([&] { service->stop(); });
    if (handler.isAway()) {
        service->leave();
    } else {
        writer->listening(options.socket);
    }
    service->serve();
    guard.endBy({});
    writer->state(handler.state());
    return guard.status();
}

} // namespace aaanc
