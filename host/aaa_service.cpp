#include "aaa_service.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace aaanc
{

namespace
{

constexpr std::uint32_t kSet = 3;
constexpr std::uint32_t kUndo = 4;
constexpr int kBacklog = 64;

[[noreturn]] void failWith(const std::string &path, const std::string &reason)
{
    throw std::runtime_error(fmt::format("{}: {}", path, reason));
}

// Removes a socket that nobody listens on any more.
void removeStale(const std::string &path)
{
    const auto type = std::filesystem::symlink_status(path).type();
    if (type == std::filesystem::file_type::not_found) {
        return;
    }
    if (type != std::filesystem::file_type::socket) {
        failWith(path, "is there and no socket");
    }
    if (connectTo(path, std::chrono::seconds(1))) {
        failWith(path, "a service is listening there already");
    }
    unlink(path.c_str());
}

Descriptor listenAt(const std::string &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.size() >= sizeof address.sun_path) {
        failWith(path, "is no path for a socket: too long or empty");
    }
    path.copy(address.sun_path, path.size());
    removeStale(path);
    Descriptor listening(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const mode_t mask = umask(0177); // no moment with more rights than 0600
    const int bound =
        bind(listening.number(), reinterpret_cast<const sockaddr *>(&address), sizeof address);
    const int error = errno;
    umask(mask);
    if (bound != 0) {
        failWith(path, std::strerror(error));
    }
    if (listen(listening.number(), kBacklog) != 0) {
        failWith(path, std::strerror(errno));
    }
    return listening;
}

// The connections that are open, as poll() wants them.
class Connections
{
public:
    Connections(const Descriptor &stopping, const Descriptor &listening,
                ServiceSocket::Answer &answer)
        : listening_(listening), answer_(answer)
    {
        polled_.push_back({stopping.number(), POLLIN, 0});
        polled_.push_back({listening.number(), POLLIN, 0});
    }

    // Serves whatever comes next; false when it is the stop.
    bool serveNext()
    {
        if (poll(polled_.data(), polled_.size(), -1) < 0) {
            return errno == EINTR;
        }
        if (polled_[0].revents != 0) {
            return false;
        }
        for (std::size_t i = open_.size(); i-- > 0;) {
            if (polled_[kFixed + i].revents != 0 && !serve(open_[i])) {
                open_.erase(open_.begin() + static_cast<std::ptrdiff_t>(i));
                polled_.erase(polled_.begin() + static_cast<std::ptrdiff_t>(kFixed + i));
            }
        }
        if (polled_[1].revents != 0) {
            take();
        }
        return true;
    }

private:
    static constexpr std::size_t kFixed = 2;

    void take()
    {
        Descriptor connection(
            accept4(listening_.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (connection) {
            polled_.push_back({connection.number(), POLLIN, 0});
            open_.push_back(std::move(connection));
        }
    }

    // Answers one request; false at the end of the connection.
    bool serve(const Descriptor &connection)
    {
        const std::optional<Bytes> packet = receivePacket(connection);
        if (!packet) {
            return false;
        }
        const std::optional<CmfRequest> request = unpackRequest(*packet);
        return sendPacket(connection,
                          packReply(request ? answer_(*request) : makeReply(kServiceMalformed)));
    }

    const Descriptor &listening_;
    ServiceSocket::Answer &answer_;
    std::vector<pollfd> polled_;
    std::vector<Descriptor> open_;
};

} // namespace

Parameter makeReply(std::uint32_t result)
{
    const std::uint32_t words[] = {result, 0};
    const auto bytes = std::as_bytes(std::span(words));
    return {0, sizeof words, {bytes.begin(), bytes.end()}};
}

Parameter RequestHandler::answer(const CmfRequest &request)
{
    return makeReply(judge(request));
}

std::uint32_t RequestHandler::judge(const CmfRequest &request)
{
    const std::optional<Request> decoded = decodeRequest(request.parameter.data);
    if (!decoded) {
        return kServiceMalformed;
    }
    const ObjectRecord &object = request.object;
    const bool object_fits = object.type == decoded->type && object.zero == 0 &&
                             object.operation == (decoded->set != 0 ? kSet : kUndo);
    if (!object_fits || (!decoded->fits && !isWithoutMeaning(*decoded))) {
        return kServiceMalformed;
    }
    state_.accept(*decoded);
    return 0;
}

ServiceSocket::ServiceSocket(std::string path, Answer answer)
    : path_(std::move(path)), answer_(std::move(answer)), listening_(listenAt(path_)),
      stopping_(eventfd(0, EFD_CLOEXEC))
{
    if (!stopping_) {
        failWith(path_, std::strerror(errno));
    }
}

ServiceSocket::~ServiceSocket()
{
    unlink(path_.c_str());
}

void ServiceSocket::serve()
{
    Connections connections(stopping_, listening_, answer_);
    while (connections.serveNext()) {
    }
}

void ServiceSocket::stop()
{
    eventfd_write(stopping_.number(), 1);
}

} // namespace aaanc
