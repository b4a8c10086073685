// The CMF functions against services on a socket, good and bad.
#include <array>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include "aaa_service.hpp"
#include "cmf.h"
#include "cmf_client.hpp"
#include "process.hpp"

namespace aaanc::test
{

namespace
{

// What a plug-in got for one request, by the first step that failed.
struct Got {
    CmfStep step = CmfStep::Connect;
    int code = 0;
    std::uint32_t kind = 9;
    std::uint32_t length = 9;
    std::optional<Bytes> data; // none for null
};

Bytes words(std::initializer_list<std::uint32_t> values)
{
    Bytes bytes(values.size() * sizeof(std::uint32_t));
    std::memcpy(bytes.data(), values.begin(), bytes.size());
    return bytes;
}

// Makes the calls that a plug-in makes, in its order.
Got request(const Bytes &block, const std::array<std::uint32_t, 3> &object)
{
    Got got;
    void *context = CMF_ClientContextInit("aaa", 145, 1);
    if (context == nullptr) {
        return got;
    }
    void *data = nullptr;
    const std::pair<CmfStep, std::function<int()>> steps[] = {
        {CmfStep::Object, [&] { return CMF_ClientContextObjSet(context, object.data()); }},
        {CmfStep::Encode,
         [&] {
             return CMF_ClientParamEncode(context, 0, static_cast<std::uint32_t>(block.size()),
                                          block.data());
         }},
        {CmfStep::Send, [&] { return CMF_ClientRequestSend(context); }},
        {CmfStep::Receive, [&] { return CMF_ClientResponseRecv(context); }},
        {CmfStep::Decode,
         [&] { return CMF_ClientParamDecode(context, &got.kind, &got.length, &data); }},
        {CmfStep::Done, [] { return 0; }},
    };
    for (const auto &[step, call] : steps) {
        got.step = step;
        got.code = call();
        if (got.code != 0) {
            break;
        }
    }
    if (data != nullptr) {
        const auto *bytes = static_cast<const std::byte *>(data);
        got.data = Bytes(bytes, bytes + got.length);
    }
    CMF_ClientContextClose(context);
    return got;
}

Got accountInterval(std::uint32_t interval)
{
    return request(words({5, 1, 4, interval}), {5, 3, 0});
}

class Exchanges : public ExchangeObserver
{
public:
    void exchanged(const Exchange &exchange) override
    {
        all.push_back(exchange);
    }
    std::vector<Exchange> all;
};

// A socket at which each test has its own service.
class Exchanging : public testing::Test
{
protected:
    Exchanging()
    {
        setCmfEndpoint(&endpoint_);
    }
    ~Exchanging() override
    {
        setCmfEndpoint(nullptr);
    }

    ScratchDirectory scratch_;
    Exchanges exchanges_;
    CmfEndpoint endpoint_{scratch_.path() + "/aaa.sock", std::chrono::seconds(10), &exchanges_};
};

// A service that takes one connection, reads one packet, and then does as told.
class OddService
{
public:
    OddService(const std::string &path, std::function<void(const Descriptor &)> behaviour)
        : listening_(socket(AF_UNIX, SOCK_SEQPACKET, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(bind(listening_.number(), reinterpret_cast<sockaddr *>(&address), sizeof address),
                  0);
        EXPECT_EQ(listen(listening_.number(), 1), 0);
        thread_ = std::thread([this, behaviour = std::move(behaviour)] {
            const Descriptor connection(accept(listening_.number(), nullptr, nullptr));
            behaviour(connection);
        });
    }
    ~OddService()
    {
        thread_.join();
    }
    OddService(const OddService &) = delete;
    OddService &operator=(const OddService &) = delete;

private:
    Descriptor listening_;
    std::thread thread_;
};

// Answers with these bytes.
std::function<void(const Descriptor &)> answering(Bytes packet)
{
    return [packet = std::move(packet)](const Descriptor &connection) {
        receivePacket(connection);
        sendPacket(connection, packet);
        receivePacket(connection); // until the client closes
    };
}

TEST_F(Exchanging, ARequestArrivesAsItWasEncoded)
{
    std::vector<CmfRequest> seen;
    ServiceSocket service(endpoint_.socket_path, [&](const CmfRequest &request) {
        seen.push_back(request);
        return makeReply(43);
    });
    std::thread thread([&] { service.serve(); });
    const Got got = accountInterval(15);
    service.stop();
    thread.join();

    EXPECT_EQ(got.step, CmfStep::Done);
    EXPECT_EQ(got.kind, 0U);
    EXPECT_EQ(got.data, words({43, 0}));
    ASSERT_EQ(seen.size(), 1U);
    EXPECT_EQ(seen[0].object.type, 5U);
    EXPECT_EQ(seen[0].object.operation, 3U);
    EXPECT_EQ(seen[0].object.zero, 0U);
    EXPECT_EQ(seen[0].parameter.kind, 0U);
    EXPECT_EQ(seen[0].parameter.data, words({5, 1, 4, 15}));
    ASSERT_EQ(exchanges_.all.size(), 1U);
    EXPECT_EQ(exchanges_.all[0].step, CmfStep::Done);
    EXPECT_EQ(exchanges_.all[0].reply.data, words({43, 0}));
}

TEST_F(Exchanging, TheSocketIsTheOwnersAloneAndGoesInTheEnd)
{
    {
        const ServiceSocket service(endpoint_.socket_path,
                                    [](const CmfRequest &) { return makeReply(0); });
        struct stat status {
        };
        ASSERT_EQ(stat(endpoint_.socket_path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777U, 0600U);
        EXPECT_THROW(
            ServiceSocket(endpoint_.socket_path, [](const CmfRequest &) { return makeReply(0); }),
            std::runtime_error);
    }
    EXPECT_FALSE(std::filesystem::exists(endpoint_.socket_path));
}

// Binds a socket of another program's; it listens with this backlog.
Descriptor otherSocket(const std::string &path, int type, int backlog)
{
    Descriptor listening(socket(AF_UNIX, type, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(listening.number(), reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(listen(listening.number(), backlog), 0);
    return listening;
}

TEST_F(Exchanging, ASocketThatAnotherListensOnIsLeftAlone)
{
    const auto start = [&] {
        const ServiceSocket service(endpoint_.socket_path,
                                    [](const CmfRequest &) { return makeReply(0); });
    };
    {
        const Descriptor stream = otherSocket(endpoint_.socket_path, SOCK_STREAM, 1);
        EXPECT_THROW(start(), std::runtime_error);
        EXPECT_TRUE(std::filesystem::exists(endpoint_.socket_path));
    }
    std::filesystem::remove(endpoint_.socket_path);
    {
        const Descriptor busy = otherSocket(endpoint_.socket_path, SOCK_SEQPACKET, 0);
        const auto waiting = connectTo(endpoint_.socket_path, std::chrono::seconds(1));
        EXPECT_TRUE(waiting);
        EXPECT_THROW(start(), std::runtime_error);
        EXPECT_TRUE(std::filesystem::exists(endpoint_.socket_path));
    }
    start(); // nobody listens any more
    EXPECT_FALSE(std::filesystem::exists(endpoint_.socket_path));
}

TEST_F(Exchanging, InTheEndItRemovesNoSocketButItsOwn)
{
    std::optional<Descriptor> other;
    {
        const ServiceSocket service(endpoint_.socket_path,
                                    [](const CmfRequest &) { return makeReply(0); });
        std::filesystem::rename(endpoint_.socket_path, scratch_.path() + "/moved");
        other = otherSocket(endpoint_.socket_path, SOCK_SEQPACKET, 1);
    }
    EXPECT_TRUE(std::filesystem::exists(endpoint_.socket_path));
}

TEST_F(Exchanging, WithoutAServiceThereIsNoContext)
{
    const Got got = accountInterval(15);
    EXPECT_EQ(got.step, CmfStep::Connect);
    ASSERT_EQ(exchanges_.all.size(), 1U);
    EXPECT_EQ(exchanges_.all[0].step, CmfStep::Connect);
    EXPECT_EQ(exchanges_.all[0].failure, endpoint_.socket_path + ": No such file or directory");
}

TEST_F(Exchanging, NoAnswerEndsInAReceiveErrorAtTheTimeLimit)
{
    const OddService service(endpoint_.socket_path, [](const Descriptor &connection) {
        receivePacket(connection); // the request
        receivePacket(connection); // the client's end
    });
    endpoint_.time_limit = std::chrono::milliseconds(100);
    const auto begin = std::chrono::steady_clock::now();
    const Got got = accountInterval(15);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, endpoint_.time_limit);
    EXPECT_EQ(got.step, CmfStep::Receive);
    EXPECT_EQ(got.code, kCmfTimeout);
}

TEST_F(Exchanging, AClosedConnectionIsAReceiveError)
{
    const OddService service(endpoint_.socket_path,
                             [](const Descriptor &connection) { receivePacket(connection); });
    const Got got = accountInterval(15);
    EXPECT_EQ(got.step, CmfStep::Receive);
    EXPECT_EQ(got.code, kCmfClosed);
}

TEST_F(Exchanging, AReplyThatIsNoParameterIsADecodeError)
{
    const OddService service(endpoint_.socket_path, answering(words({0})));
    const Got got = accountInterval(15);
    EXPECT_EQ(got.step, CmfStep::Decode);
    EXPECT_EQ(got.code, kCmfMalformed);
}

TEST_F(Exchanging, AReplyWithoutDataIsNullWithItsLength)
{
    const OddService service(endpoint_.socket_path, answering(words({0, 8})));
    const Got got = accountInterval(15);
    EXPECT_EQ(got.step, CmfStep::Done);
    EXPECT_EQ(got.length, 8U);
    EXPECT_EQ(got.data, std::nullopt);
}

TEST_F(Exchanging, ALongReplyComesWhole)
{
    Bytes packet = words({0, 4096});
    packet.resize(packet.size() + 4096, std::byte{7});
    const OddService service(endpoint_.socket_path, answering(packet));
    const Got got = accountInterval(15);
    EXPECT_EQ(got.step, CmfStep::Done);
    EXPECT_EQ(got.data, Bytes(4096, std::byte{7}));
}

TEST_F(Exchanging, ARequestOfNoPacketsSizeIsAnEncodeError)
{
    const OddService service(endpoint_.socket_path,
                             [](const Descriptor &connection) { receivePacket(connection); });
    const Got got = request(Bytes(kMaxPacket), {5, 3, 0});
    EXPECT_EQ(got.step, CmfStep::Encode);
    EXPECT_EQ(got.code, kCmfTooLong);
}

TEST_F(Exchanging, CallsOutOfOrderAreErrors)
{
    const OddService service(endpoint_.socket_path,
                             [](const Descriptor &connection) { receivePacket(connection); });
    void *context = CMF_ClientContextInit("aaa", 145, 1);
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(CMF_ClientRequestSend(context), kCmfInvalid);
    EXPECT_EQ(CMF_ClientResponseRecv(context), kCmfInvalid);
    CMF_ClientContextClose(context);
}

TEST_F(Exchanging, APacketThatIsNoRequestIsAnsweredMalformed)
{
    RequestHandler handler;
    ServiceSocket service(endpoint_.socket_path,
                          [&](const CmfRequest &request) { return handler.answer(request); });
    std::thread thread([&] { service.serve(); });
    for (const Bytes &packet : {words({1}), words({5, 3, 0, 0, 99, 1}), Bytes(kMaxPacket)}) {
        const std::optional<Descriptor> connection =
            connectTo(endpoint_.socket_path, std::chrono::seconds(1));
        EXPECT_TRUE(connection);
        sendPacket(*connection, packet);
        const std::optional<Bytes> reply = receivePacket(*connection);
        EXPECT_EQ(reply, words({0, 8, kServiceMalformed, 0}));
    }
    EXPECT_TRUE(accountInterval(15).data == words({0, 0})) << "it still serves";
    service.stop();
    thread.join();
}

} // namespace

} // namespace aaanc::test
