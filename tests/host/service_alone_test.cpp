// The AAA service alone, as a process.
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include "alone.hpp"
#include "canary.hpp"
#include "cmf_wire.hpp"
#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

TEST(ServiceAlone, TellsRequestsAndEndsBySignal)
{
    std::signal(SIGHUP, SIG_DFL); // nohup(1) may run the tests
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        const ScratchDirectory client;
        const ScratchDirectory scratch;
        const std::string edit = client.write(
            "edit.json", R"({"orvek-aaa:sysAaa": {"aaaGlobal": {"startFailType": 1}}})");
        Alone service(scratch.path());
        EXPECT_EQ(
            runAaanc({"apply", "--no-enabled", "--socket", scratch.path() + "/aaa.sock", edit})
                .status,
            0);
        const Outcome outcome = service.end(signal);
        EXPECT_EQ(outcome.status, 128 + signal);
        EXPECT_EQ(outcome.output, "Listening at aaa.sock.\n"
                                  "    request 1: set start-failure policy (type 21)\n"
                                  "      startFailType        1\n"
                                  "      answer               0 (accepted)\n"
                                  "State of the AAA service: 1 object\n"
                                  "  Start-failure policy\n"
                                  "    startFailType  request\n"
                                  "    1              1\n");
        EXPECT_FALSE(std::filesystem::exists(scratch.path() + "/aaa.sock"));
    }
}

TEST(ServiceAlone, HidesSharedKeys)
{
    for (const std::string form : {"--json", "--hex"}) {
        const ScratchDirectory client;
        const ScratchDirectory scratch;
        const std::string edit = client.write("edit.json", kOneServer);
        Alone service(scratch.path(), {"--hex", form});
        EXPECT_EQ(runAaanc({"apply", "--socket", scratch.path() + "/aaa.sock", edit}).status, 0);
        const Outcome outcome = service.end(SIGTERM);
        EXPECT_NE(outcome.output.find("****"), std::string::npos);
        expectNoCanary(outcome.output);
        expectNoCanary(outcome.errors);
    }
}

// A named pipe that takes nothing any more.
class FullPipe
{
public:
    explicit FullPipe(const std::string &path)
    {
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        pipe_ = Descriptor(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK));
        const std::string bytes(4096, 'x');
        while (write(pipe_.number(), bytes.data(), bytes.size()) > 0) {
        }
        EXPECT_EQ(errno, EAGAIN);
    }

private:
    Descriptor pipe_;
};

TEST(ServiceAlone, EndsWithinASecondThoughNobodyReadsWhatItTells)
{
    const ScratchDirectory scratch;
    const FullPipe output(scratch.path() + "/output");
    Alone service(scratch.path());
    std::filesystem::remove(scratch.path() + "/output");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(service.end(SIGTERM).status, 128 + SIGTERM);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
    EXPECT_FALSE(std::filesystem::exists(scratch.path() + "/aaa.sock"));
}

TEST(ServiceAlone, NumbersARequestThatItDoesNotRead)
{
    const ScratchDirectory client;
    const ScratchDirectory scratch;
    const std::string edit = client.write("edit.json", R"({"orvek-aaa:sysAaa": {"aaaDomain":
        {"domainInfo": [{"domainName": "one"}]}}})");
    const std::vector<std::string> apply = {"apply", "--no-enabled", "--socket",
                                            scratch.path() + "/aaa.sock", edit};
    Alone service(scratch.path(), {"--misbehave", "request 2: close-before"});
    EXPECT_EQ(runAaanc(apply).status, 0);
    EXPECT_EQ(runAaanc(apply).status, 1);
    EXPECT_EQ(runAaanc(apply).status, 0);
    EXPECT_EQ(service.end(SIGTERM).output,
              "Listening at aaa.sock.\n"
              "    request 1: set domain (type 0)\n"
              "      domainName           \"one\"\n"
              "      bSecondConfirm       0 (no)\n"
              "      answer               0 (accepted)\n"
              "    request 2: not read\n"
              "      answer               none, misbehaving: close-before\n"
              "    request 3: set domain (type 0)\n"
              "      domainName           \"one\"\n"
              "      bSecondConfirm       0 (no)\n"
              "      answer               0 (accepted)\n"
              "State of the AAA service: 1 object\n"
              "  Domains\n"
              "    domain  request\n"
              "    one     3\n");
}

// Sends packets of these words, each on a connection of its own.
void send(const std::string &socket, const std::vector<std::vector<std::uint32_t>> &packets)
{
    for (const std::vector<std::uint32_t> &words : packets) {
        const auto connection = connectTo(socket, std::chrono::seconds(1));
        ASSERT_TRUE(connection);
        sendPacket(*connection, std::as_bytes(std::span(words)));
        receivePacket(*connection);
    }
}

TEST(ServiceAlone, SaysWhyItRefuses)
{
    const ScratchDirectory scratch;
    Alone service(scratch.path());
    send(scratch.path() + "/aaa.sock", {{5, 3},
                                        {21, 3, 0, 0, 16, 5, 1, 4, 15},
                                        {5, 3, 0, 0, 8, 5, 1},
                                        {5, 3, 0, 0, 16, 5, 1, 4, 15}});
    EXPECT_EQ(service.end(SIGTERM).output,
              "Listening at aaa.sock.\n"
              "    request 1: no request\n"
              "      answer               22 (refused)\n"
              "      reason               a packet of 8 bytes, which is no object record with a "
              "parameter of the length that it says\n"
              "    request 2: set accounting interval (type 5)\n"
              "      accountInterval      15\n"
              "      answer               22 (refused)\n"
              "      reason               the object record has message type 21, the parameter 5\n"
              "    request 3: shorter than a header\n"
              "      answer               22 (refused)\n"
              "      reason               8 bytes, fewer than the 12 of a header\n"
              "    request 4: set accounting interval (type 5)\n"
              "      accountInterval      15\n"
              "      answer               0 (accepted)\n"
              "State of the AAA service: 1 object\n"
              "  Accounting interval\n"
              "    accountInterval  request\n"
              "    15               4\n");
}

TEST(ServiceAlone, SaysAllThatInJson)
{
    const ScratchDirectory scratch;
    Alone service(scratch.path(), {"--json"});
    send(scratch.path() + "/aaa.sock", {{21, 3, 0, 0, 16, 5, 1, 4, 15}});
    const std::vector<std::string> output = lines(service.end(SIGTERM).output);
    ASSERT_EQ(output.size(), 4U);
    EXPECT_EQ(output[1], R"({"record":"listening","socket":"aaa.sock"})");
    const auto answer = nlohmann::json::parse(output[2])["answer"];
    EXPECT_EQ(answer["result"], 22);
    EXPECT_EQ(answer["reason"], "the object record has message type 21, the parameter 5");
}

// As nohup(1) starts it.
TEST(ServiceAlone, OutlivesAHangUpThatIsToBeIgnored)
{
    const ScratchDirectory scratch;
    std::signal(SIGHUP, SIG_IGN);
    Alone service(scratch.path());
    std::signal(SIGHUP, SIG_DFL);
    service.send(SIGHUP);
    EXPECT_EQ(service.end(SIGTERM).status, 128 + SIGTERM);
}

// Its output is a pipe that is full, so that it cannot come to its end by itself.
TEST(ServiceAlone, RemovesNothingButItsSocket)
{
    const ScratchDirectory scratch;
    const FullPipe output(scratch.path() + "/output");
    Alone service(scratch.path());
    const std::string socket = scratch.path() + "/aaa.sock";
    std::filesystem::remove(socket);
    std::filesystem::create_directory(socket);
    (void)scratch.write("aaa.sock/precious", "");
    std::filesystem::remove(scratch.path() + "/output");
    EXPECT_EQ(service.end(SIGTERM).status, 128 + SIGTERM);
    EXPECT_TRUE(std::filesystem::exists(socket + "/precious"));
}

TEST(ServiceAlone, ReplacesASocketThatNobodyListensOn)
{
    const ScratchDirectory scratch;
    Alone first(scratch.path());
    first.end(SIGKILL);
    EXPECT_TRUE(std::filesystem::exists(scratch.path() + "/aaa.sock"));
    Alone second(scratch.path());
    EXPECT_EQ(second.end(SIGTERM).status, 128 + SIGTERM);
}

} // namespace

} // namespace aaanc::test
