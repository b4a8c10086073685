// The stand-in for CMF messaging: one packet for a request and one for its reply,
// over a Unix socket of type SOCK_SEQPACKET. Words are in the machine's byte
// order.
//
//   request: object record (12 bytes), then one parameter
//   reply:   one parameter
//   parameter: kind (4 bytes), length (4 bytes), data
//
// The length is that of the data, but for a reply without any: then it is what
// the client is told, with data that are null.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace aaanc
{

using Bytes = std::vector<std::byte>;

// Largest packet that is sent or understood.
constexpr std::size_t kMaxPacket = 65536;

struct Parameter {
    std::uint32_t kind = 0;
    std::uint32_t length = 0;
    Bytes data;
};

// What CMF_ClientContextObjSet() is given.
struct ObjectRecord {
    std::uint32_t type = 0; // the message type
    std::uint32_t operation = 0;
    std::uint32_t zero = 0;
};

struct CmfRequest {
    ObjectRecord object;
    Parameter parameter;
};

Bytes packRequest(const CmfRequest &request);
Bytes packReply(const Parameter &reply);
// None where the packet is too short, or its length does not fit.
std::optional<CmfRequest> unpackRequest(std::span<const std::byte> packet);
std::optional<Parameter> unpackReply(std::span<const std::byte> packet);

// A file descriptor that is closed in the end. That leaves errno as it is.
class Descriptor
{
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor &&other) noexcept : number_(other.number_)
    {
        other.number_ = -1;
    }
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        const int number = number_;
        number_ = other.number_;
        other.number_ = number;
        return *this;
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor();

    [[nodiscard]] int number() const
    {
        return number_;
    }
    explicit operator bool() const
    {
        return number_ >= 0;
    }

private:
    int number_;
};

// Waits for data, or the end of the peer; false when `limit` has passed.
bool waitReadable(const Descriptor &socket, std::chrono::milliseconds limit);

// Throws std::runtime_error for what no socket can have as its path: nothing, or too
// much.
void checkSocketPath(const std::string &path);
// Connects to the service at `path`, within `limit`. None if that fails: errno says
// why.
std::optional<Descriptor> connectTo(const std::string &path, std::chrono::milliseconds limit);
bool sendPacket(const Descriptor &socket, std::span<const std::byte> packet);
// The next packet; none at the end of the connection. An empty packet is none, too.
std::optional<Bytes> receivePacket(const Descriptor &socket);

} // namespace aaanc
