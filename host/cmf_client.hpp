// The client side of the CMF stand-in: what the CMF_Client... functions do.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "cmf.h"
#include "cmf_wire.hpp"

namespace aaanc
{

// Codes that the CMF functions return, besides CMF_NO_MEMORY.
enum CmfCode : int {
    kCmfDone = 0,
    kCmfInvalid = 2,   // an argument, or a call out of order
    kCmfTooLong = 3,   // more than a packet holds
    kCmfClosed = 4,    // the service has closed the connection
    kCmfTimeout = 6,   // no answer within the time limit
    kCmfMalformed = 8, // a reply that is no parameter
};

// How far a request came.
enum class CmfStep { Connect, Object, Encode, Send, Receive, Decode, Done };

// A request from the opening of its context to its closing.
struct Exchange {
    CmfRequest request;
    CmfStep step = CmfStep::Connect; // the one that failed, or Done
    int code = kCmfDone;             // of that step
    std::string failure;             // to connect: where, and why
    Parameter reply{};               // when Done
};

class ExchangeObserver
{
public:
    virtual ~ExchangeObserver() = default;
    // Called when the context is closed or could not be opened, on its thread.
    virtual void exchanged(const Exchange &exchange) = 0;
};

// Where the clients of this process find their service.
struct CmfEndpoint {
    std::string socket_path;
    std::chrono::milliseconds time_limit{5000}; // of connecting, sending and receiving, each
    ExchangeObserver *observer = nullptr;
};

// The CMF functions are handed no context to find it in, so that it is one for
// the process. `endpoint` outlives all requests; null for none.
void setCmfEndpoint(const CmfEndpoint *endpoint);
const CmfEndpoint *cmfEndpoint();

// One request and its reply. The functions return a CmfCode.
class CmfClient
{
public:
    // Connects; the connection is lost if that failed.
    explicit CmfClient(const CmfEndpoint &endpoint);
    ~CmfClient();
    CmfClient(const CmfClient &) = delete;
    CmfClient &operator=(const CmfClient &) = delete;

    [[nodiscard]] bool connected() const
    {
        return connection_.has_value();
    }
    int setObject(const ObjectRecord &object);
    int encode(Parameter parameter);
    int send();
    int receive();
    // On success `reply` points at the reply, as long as this lives.
    int decode(const Parameter **reply);

private:
    // Does what a step takes, if it is the next one, and notes how it ended.
    template <typename Action> int doStep(CmfStep step, Action action);

    const CmfEndpoint &endpoint_;
    std::optional<Descriptor> connection_;
    Bytes packet_; // the reply
    Exchange exchange_;
};

} // namespace aaanc
