// The AAA service: answers requests on a socket.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "cmf_wire.hpp"
#include "messages.hpp"
#include "misbehaviour.hpp"
#include "running_state.hpp"

namespace aaanc
{

// What the service answers with, besides 0. None of the codes that the plug-in
// gives a meaning to.
constexpr std::uint32_t kServiceMalformed = 22; // a request that is not as it should be

// Why a request is not as it should be; empty where it is. `decoded` is what its
// block says.
std::string malformationOf(const CmfRequest &request, const std::optional<Request> &decoded);

// What happens to a request.
struct Treatment {
    Treatment() = default;
    // An answer at once.
    Treatment(const Parameter &reply) : packet(packReply(reply)) {} // NOLINT: a reply is one

    Bytes packet;                       // that answers; empty for no answer
    std::chrono::milliseconds delay{0}; // of the answer
    bool closes = false;                // the connection, instead of answering
    bool leaves = false;                // nobody listens any more, already before the answer
    std::string rule;                   // that asks for it; empty for none
};

// Decides about requests, and counts them. Not for several threads.
class RequestHandler
{
public:
    // Of several rules for a request, the first counts.
    explicit RequestHandler(std::vector<Misbehaviour> rules = {}) : rules_(std::move(rules)) {}

    // The reply to a request, whose settings are kept if it is accepted. Knows no rules.
    Parameter answer(const CmfRequest &request);
    // The same, as the rules want it.
    Treatment treat(const CmfRequest &request);
    // The rule that wants the next request's connection closed at once, null for none; if
    // there is one, that was the request.
    const Misbehaviour *closesNext();
    // Counts a packet that is no request.
    void countMalformed()
    {
        ++count_;
    }
    // Whether the rules want nobody to listen for the next request.
    [[nodiscard]] bool isAway() const;

    [[nodiscard]] const RunningState &state() const
    {
        return state_;
    }

private:
    [[nodiscard]] const Misbehaviour *ruleFor(std::size_t number, std::uint32_t type) const;
    std::uint32_t judge(const CmfRequest &request);

    std::vector<Misbehaviour> rules_;
    RunningState state_;
    std::size_t count_ = 0; // of the requests so far
};

// The bytes of a reply: result code, length of further data, no data.
Parameter makeReply(std::uint32_t result);

// A socket that has been made in the file system.
struct SocketFile {
    std::string path;
    dev_t device;
    ino_t inode;

    // Unless another file stands there by now.
    void remove() const;
};

// Serves connections until stop(). One is closed at once where `closes_next` says so. A packet that
// is no request is answered kServiceMalformed without asking, and told to `malformed`. The socket
// is the owner's alone (mode 0600), and is removed in the end. One at `path` that nobody listens on
// is replaced; throws std::runtime_error where something else is there or no socket can be made.
class ServiceSocket
{
public:
    using Answer = std::function<Treatment(const CmfRequest &request)>;
    using ClosesNext = std::function<bool()>;
    using Malformed = std::function<void(const Bytes &packet)>;

    ServiceSocket(
        const std::string &path, Answer answer, ClosesNext closes_next = [] { return false; },
        Malformed malformed = [](const Bytes &) {});
    ~ServiceSocket();
    ServiceSocket(const ServiceSocket &) = delete;
    ServiceSocket &operator=(const ServiceSocket &) = delete;

    // Answers requests on the calling thread, until stop().
    void serve();
    // From any thread, and from a signal handler.
    void stop();
    // Goes away: nobody can connect any more. Connections that there are stay. Not
    // while another thread serves.
    void leave();
    [[nodiscard]] const SocketFile &file() const
    {
        return file_;
    }

private:
    class Server;

    Answer answer_;
    ClosesNext closes_next_;
    Malformed malformed_;
    Descriptor stopping_;  // an eventfd
    Descriptor listening_; // until it has left
    SocketFile file_;
};

} // namespace aaanc
