// The AAA service: answers requests on a socket.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "cmf_wire.hpp"
#include "messages.hpp"
#include "running_state.hpp"

namespace aaanc
{

// What the service answers with, besides 0. None of the codes that the plug-in
// gives a meaning to.
constexpr std::uint32_t kServiceMalformed = 22; // a request that is not as it should be

// Decides about requests. Not for several threads.
class RequestHandler
{
public:
    // The reply to a request, whose settings are kept if it is accepted.
    Parameter answer(const CmfRequest &request);
    [[nodiscard]] const RunningState &state() const
    {
        return state_;
    }

private:
    std::uint32_t judge(const CmfRequest &request);

    RunningState state_;
};

// The bytes of a reply: result code, length of further data, no data.
Parameter makeReply(std::uint32_t result);

// Serves connections until stop(). A packet that is no request is answered
// kServiceMalformed without asking. The socket is the owner's alone (mode 0600),
// and is removed in the end. A stale one at `path` is replaced; throws
// std::runtime_error where something else is there or no socket can be made.
class ServiceSocket
{
public:
    using Answer = std::function<Parameter(const CmfRequest &request)>;

    ServiceSocket(std::string path, Answer answer);
    ~ServiceSocket();
    ServiceSocket(const ServiceSocket &) = delete;
    ServiceSocket &operator=(const ServiceSocket &) = delete;

    // Answers requests on the calling thread, until stop().
    void serve();
    // From any thread, and from a signal handler.
    void stop();

private:
    std::string path_;
    Answer answer_;
    Descriptor listening_;
    Descriptor stopping_; // an eventfd
};

} // namespace aaanc
