#include "cmf_wire.hpp"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include "printable.hpp"

namespace aaanc
{

namespace
{

constexpr std::size_t kWord = sizeof(std::uint32_t);
constexpr std::size_t kMaxSocketPath = sizeof(sockaddr_un::sun_path) - 1;

void putWord(Bytes &packet, std::uint32_t word)
{
    const auto bytes = std::as_bytes(std::span(&word, 1));
    packet.insert(packet.end(), bytes.begin(), bytes.end());
}

std::uint32_t wordAt(std::span<const std::byte> packet, std::size_t offset)
{
    std::uint32_t word = 0;
    std::memcpy(&word, packet.subspan(offset, kWord).data(), kWord);
    return word;
}

void putParameter(Bytes &packet, const Parameter &parameter)
{
    putWord(packet, parameter.kind);
    putWord(packet, parameter.length);
    packet.insert(packet.end(), parameter.data.begin(), parameter.data.end());
}

std::optional<Parameter> unpackParameter(std::span<const std::byte> packet)
{
    if (packet.size() < 2 * kWord) {
        return std::nullopt;
    }
    const std::span<const std::byte> data = packet.subspan(2 * kWord);
    return Parameter{wordAt(packet, 0), wordAt(packet, kWord), {data.begin(), data.end()}};
}

} // namespace

Bytes packRequest(const CmfRequest &request)
{
    Bytes packet;
    putWord(packet, request.object.type);
    putWord(packet, request.object.operation);
    putWord(packet, request.object.zero);
    putParameter(packet, request.parameter);
    return packet;
}

Bytes packReply(const Parameter &reply)
{
    Bytes packet;
    putParameter(packet, reply);
    return packet;
}

std::optional<CmfRequest> unpackRequest(std::span<const std::byte> packet)
{
    if (packet.size() < 3 * kWord) {
        return std::nullopt;
    }
    std::optional<Parameter> parameter = unpackParameter(packet.subspan(3 * kWord));
    if (!parameter || parameter->length != parameter->data.size()) {
        return std::nullopt;
    }
    return CmfRequest{{wordAt(packet, 0), wordAt(packet, kWord), wordAt(packet, 2 * kWord)},
                      std::move(*parameter)};
}

std::optional<Parameter> unpackReply(std::span<const std::byte> packet)
{
    std::optional<Parameter> reply = unpackParameter(packet);
    if (reply && !reply->data.empty() && reply->length != reply->data.size()) {
        return std::nullopt;
    }
    return reply;
}

Descriptor::~Descriptor()
{
    if (number_ >= 0) {
        const int error = errno;
        close(number_);
        errno = error;
    }
}

bool waitReadable(const Descriptor &socket, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    pollfd waited{socket.number(), POLLIN, 0};
    while (true) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        const int ready = poll(&waited, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0);
        if (ready > 0) {
            return true;
        }
        if (ready == 0 || errno != EINTR) {
            return false;
        }
    }
}

void checkSocketPath(const std::string &path)
{
    if (path.empty()) {
        throw std::runtime_error("the path of the socket is empty");
    }
    if (path.size() > kMaxSocketPath) {
        throw std::runtime_error(fmt::format("{}: longer than the {} bytes of a socket's path",
                                             printable(path), kMaxSocketPath));
    }
}

std::optional<Descriptor> connectTo(const std::string &path, std::chrono::milliseconds limit)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() > kMaxSocketPath) {
        errno = EINVAL;
        return std::nullopt;
    }
    path.copy(address.sun_path, path.size());
    Descriptor connection(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    const timeval patience{limit.count() / 1000, (limit.count() % 1000) * 1000};
    if (!connection ||
        setsockopt(connection.number(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience) != 0 ||
        connect(connection.number(), reinterpret_cast<const sockaddr *>(&address),
                sizeof address) != 0) {
        return std::nullopt;
    }
    return connection;
}

bool sendPacket(const Descriptor &socket, std::span<const std::byte> packet)
{
    return send(socket.number(), packet.data(), packet.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(packet.size());
}

std::optional<Bytes> receivePacket(const Descriptor &socket)
{
    // Not one for each packet: most are far smaller.
    static thread_local std::array<std::byte, kMaxPacket> buffer;
    const ssize_t size = recv(socket.number(), buffer.data(), buffer.size(), 0);
    if (size <= 0) {
        return std::nullopt;
    }
    return Bytes(buffer.begin(), buffer.begin() + size);
}

} // namespace aaanc
