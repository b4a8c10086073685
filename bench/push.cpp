// Pushes RADIUS servers to an AAA service (aaanc service), as at a start-up:
//
//   push WHO SOCKET COUNT
//
// WHO is "plugin", its floor "calls", or "client", a bare client that sends the
// same requests and knows of nothing else. Prints the seconds that it took.
#include "plugin.hpp"
#include "workload.hpp"

#include "cmf_client.hpp"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string_view>

using namespace aaanc::bench;

namespace
{

// One request: object record, kind and length of the parameter, the parameter.
bool exchange(const sockaddr_un &service, const AaaNcParam &request)
{
    struct {
        std::uint32_t head[5];
        AaaNcParam block;
    } packet;
    const std::uint32_t length = request.header.length + 12;
    packet.block = request;
    packet.head[0] = request.header.eMsgType;
    packet.head[1] = request.header.bDoFlag != 0 ? 3 : 4;
    packet.head[2] = 0;
    packet.head[3] = 0;
    packet.head[4] = length;

    std::uint32_t answer[4]; // kind, length, result, length of data
    const int connection = socket(AF_UNIX, SOCK_SEQPACKET, 0);
    const bool accepted =
        connect(connection, reinterpret_cast<const sockaddr *>(&service), sizeof(service)) == 0 &&
        send(connection, &packet, sizeof(packet.head) + length, MSG_NOSIGNAL) > 0 &&
        recv(connection, answer, sizeof(answer), 0) == sizeof(answer) && answer[2] == 0;
    close(connection);
    return accepted;
}

int runClient(const Workload &workload, const char *path)
{
    sockaddr_un service{};
    service.sun_family = AF_UNIX;
    std::strncpy(service.sun_path, path, sizeof(service.sun_path) - 1);
    for (const AaaNcParam &request : workload.requests)
        if (!exchange(service, request))
            return 1;
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: push plugin|calls|client SOCKET COUNT\n");
        return 2;
    }
    const std::string_view who = argv[1];
    const Workload workload = radiusServers(std::strtoul(argv[3], nullptr, 10));
    const aaanc::CmfEndpoint endpoint{argv[2]};
    aaanc::setCmfEndpoint(&endpoint);

    std::function<int()> run = [&] { return runClient(workload, argv[2]); };
    if (who == "plugin") {
        loadPlugin();
        run = [&] { return runPlugin(workload); };
    } else if (who == "calls") {
        run = [&] { return runFloor(workload, nullptr); };
    }
    play(workload, workload.entries);
    const auto begin = std::chrono::steady_clock::now();
    const int rc = run();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    if (rc != 0) {
        std::fprintf(stderr, "push: %s ends with %d\n", argv[1], rc);
        return 1;
    }
    std::printf("%.6f\n", taken.count());
    return 0;
}
