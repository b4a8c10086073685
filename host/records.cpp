#include "records.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#include <fmt/format.h>

#include "aaa_service.hpp"
#include "running_state.hpp"
#include "sysrepo.h"

namespace aaanc
{

namespace
{

std::string failureText(const Exchange &exchange)
{
    switch (exchange.step) {
    case CmfStep::Connect:
        return "none: the service cannot be reached at " + exchange.failure;
    case CmfStep::Receive:
        return exchange.code == kCmfTimeout ? "none: the time limit has passed"
                                            : "none: the service has closed the connection";
    case CmfStep::Decode:
        return "none: what came is no reply";
    case CmfStep::Send:
        return "none: the request could not be sent";
    default:
        return "none: the request was not sent";
    }
}

} // namespace

std::string eventName(std::uint32_t event)
{
    constexpr std::array<const char *, 4> kNames = {"verify", "apply", "abort", "enabled"};
    return event < kNames.size() ? kNames[event] : fmt::format("event {}", event);
}

std::string requestTitle(const Request &request)
{
    return fmt::format("{} {} (type {}){}", request.set != 0 ? "set" : "undo",
                       request.layout != nullptr ? request.layout->meaning : "unknown message",
                       request.type,
                       isWithoutMeaning(request) ? ", without meaning by design" : "");
}

Answer answerOf(const Exchange &exchange)
{
    if (exchange.step != CmfStep::Done) {
        return {std::nullopt, failureText(exchange), {}};
    }
    // Result code and length of further data, as a client finds them: zero
    // where the reply ends too early.
    std::array<std::uint32_t, 2> words{};
    const Parameter &reply = exchange.reply;
    if (!reply.data.empty()) {
        std::memcpy(words.data(), reply.data.data(), std::min(sizeof words, reply.data.size()));
    }
    if (reply.length != std::uint64_t{words[1]} + sizeof words) {
        return {std::nullopt,
                fmt::format("malformed, counts as accepted: {} bytes, {} announced", reply.length,
                            std::uint64_t{words[1]} + sizeof words),
                {}};
    }
    std::string reason;
    if (words[0] == kServiceMalformed) {
        const CmfRequest &request = exchange.request;
        reason = malformationOf(request, decodeRequest(request.parameter.data));
    }
    return {words[0], fmt::format("{} ({})", words[0], words[0] == 0 ? "accepted" : "refused"),
            reason};
}

} // namespace aaanc
