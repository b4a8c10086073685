#include "round_trip.hpp"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace aaanc::bench
{

namespace
{

constexpr std::uint32_t kAccepted[2] = {0, 0}; // result, length of data

void serve(int listener)
{
    for (;;) {
        const int connection = accept(listener, nullptr, nullptr);
        if (connection < 0)
            return; // shut down
        char request[1024];
        if (recv(connection, request, sizeof(request), 0) > 0)
            (void)send(connection, kAccepted, sizeof(kAccepted), MSG_NOSIGNAL);
        close(connection);
    }
}

} // namespace

Service::Service() : listener_(socket(AF_UNIX, SOCK_SEQPACKET, 0))
{
    // Bound without a name, it gets one of its own that no file stands for.
    const sockaddr_un address = {AF_UNIX, {}};
    if (listener_ < 0 ||
        bind(listener_, reinterpret_cast<const sockaddr *>(&address), sizeof(sa_family_t)) != 0 ||
        listen(listener_, 1) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot listen");
    thread_ = std::thread(serve, listener_);
}

Service::~Service()
{
    shutdown(listener_, SHUT_RDWR);
    thread_.join();
    close(listener_);
}

bool Service::roundTrip(std::size_t length) const
{
    sockaddr_un address{};
    socklen_t size = sizeof(address);
    getsockname(listener_, reinterpret_cast<sockaddr *>(&address), &size);
    const int connection = socket(AF_UNIX, SOCK_SEQPACKET, 0);
    char request[1024] = {};
    std::uint32_t answer[2];
    const bool answered =
        connect(connection, reinterpret_cast<const sockaddr *>(&address), size) == 0 &&
        send(connection, request, length, MSG_NOSIGNAL) == static_cast<ssize_t>(length) &&
        recv(connection, answer, sizeof(answer), 0) == sizeof(answer);
    close(connection);
    return answered;
}

} // namespace aaanc::bench
