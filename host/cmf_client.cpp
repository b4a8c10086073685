#include "cmf_client.hpp"

#include <cerrno>
#include <cstring>
#include <utility>

#include <fmt/format.h>

#include "printable.hpp"

namespace aaanc
{

namespace
{

const CmfEndpoint *current_endpoint = nullptr;

CmfStep after(CmfStep step)
{
    return static_cast<CmfStep>(static_cast<int>(step) + 1);
}

} // namespace

void setCmfEndpoint(const CmfEndpoint *endpoint)
{
    current_endpoint = endpoint;
}

const CmfEndpoint *cmfEndpoint()
{
    return current_endpoint;
}

CmfClient::CmfClient(const CmfEndpoint &endpoint) : endpoint_(endpoint)
{
    doStep(CmfStep::Connect, [this] {
        connection_ = connectTo(endpoint_.socket_path, endpoint_.time_limit);
        if (connection_) {
            return kCmfDone;
        }
        exchange_.failure =
            fmt::format("{}: {}", printable(endpoint_.socket_path), std::strerror(errno));
        return kCmfClosed;
    });
}

CmfClient::~CmfClient()
{
    if (endpoint_.observer != nullptr) {
        endpoint_.observer->exchanged(exchange_);
    }
}

template <typename Action> int CmfClient::doStep(CmfStep step, Action action)
{
    if (exchange_.step != step || exchange_.code != kCmfDone) {
        return kCmfInvalid;
    }
    exchange_.code = action();
    if (exchange_.code == kCmfDone) {
        exchange_.step = after(step);
    }
    return exchange_.code;
}

int CmfClient::setObject(const ObjectRecord &object)
{
    return doStep(CmfStep::Object, [&] {
        exchange_.request.object = object;
        return kCmfDone;
    });
}

int CmfClient::encode(Parameter parameter)
{
    return doStep(CmfStep::Encode, [&] {
        exchange_.request.parameter = std::move(parameter);
        return packRequest(exchange_.request).size() <= kMaxPacket ? kCmfDone : kCmfTooLong;
    });
}

int CmfClient::send()
{
    return doStep(CmfStep::Send, [this] {
        return sendPacket(*connection_, packRequest(exchange_.request)) ? kCmfDone : kCmfClosed;
    });
}

int CmfClient::receive()
{
    return doStep(CmfStep::Receive, [this] {
        if (!waitReadable(*connection_, endpoint_.time_limit)) {
            return kCmfTimeout;
        }
        std::optional<Bytes> packet = receivePacket(*connection_);
        if (!packet) {
            return kCmfClosed;
        }
        packet_ = std::move(*packet);
        return kCmfDone;
    });
}

int CmfClient::decode(const Parameter **reply)
{
    return doStep(CmfStep::Decode, [&] {
        std::optional<Parameter> parameter = unpackReply(packet_);
        if (!parameter) {
            return kCmfMalformed;
        }
        exchange_.reply = std::move(*parameter);
        *reply = &exchange_.reply;
        return kCmfDone;
    });
}

} // namespace aaanc
