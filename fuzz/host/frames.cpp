// Packets to the AAA service, over its socket.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

#include <unistd.h>

#include "aaa_service.hpp"
#include "cmf_wire.hpp"
#include "targets.hpp"

namespace aaanc::test::fuzz
{

namespace
{

// Far longer than an answer takes, under a sanitizer and load.
constexpr std::chrono::seconds kPatience(5);

class Service
{
public:
    Service()
        : path_(std::filesystem::temp_directory_path() /
                ("aaanc-fuzz-" + std::to_string(getpid()) + ".sock")),
          socket_(path_, [this](const CmfRequest &request) { return handler_.answer(request); }),
          thread_([this] { socket_.serve(); })
    {
    }
    ~Service()
    {
        socket_.stop();
        thread_.join();
    }
    Service(const Service &) = delete;
    Service &operator=(const Service &) = delete;

    [[nodiscard]] const std::string &path() const
    {
        return path_;
    }

private:
    std::string path_;
    RequestHandler handler_;
    ServiceSocket socket_;
    std::thread thread_;
};

// A length in two bytes, then so many bytes, none for an empty packet, which a
// socket takes for the end of the connection.
aaanc::Bytes takePacket(fuzz::Bytes &input)
{
    const std::size_t size = 1 + input.byte() + 256 * input.below(8);
    aaanc::Bytes packet;
    while (packet.size() < size && !input.empty())
        packet.push_back(std::byte{input.byte()});
    packet.resize(std::max<std::size_t>(packet.size(), 1));
    return packet;
}

// What the service answers, held against the same decision without a socket.
std::string packetFinding(const Descriptor &connection, RequestHandler &handler,
                          const aaanc::Bytes &packet)
{
    if (!sendPacket(connection, packet) || !waitReadable(connection, kPatience))
        return "no answer";
    const std::optional<aaanc::Bytes> answer = receivePacket(connection);
    if (!answer)
        return "the connection was closed";
    const std::optional<CmfRequest> request = unpackRequest(packet);
    const Parameter expected = request ? handler.answer(*request) : makeReply(kServiceMalformed);
    return *answer == packReply(expected) ? "" : "another answer than is due";
}

} // namespace

std::string fuzzFrames(fuzz::Bytes input)
{
    const Service service;
    const std::optional<Descriptor> connection = connectTo(service.path(), kPatience);
    if (!connection)
        return "the service is away";
    RequestHandler handler;
    do {
        const std::string finding = packetFinding(*connection, handler, takePacket(input));
        if (!finding.empty())
            return finding;
    } while (!input.empty());
    return "";
}

} // namespace aaanc::test::fuzz
