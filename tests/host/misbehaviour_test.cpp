// A service that misbehaves, in every way and at every request.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "aaa_service.hpp"
#include "alone.hpp"
#include "misbehaviour.hpp"
#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

using Json = nlohmann::ordered_json;

constexpr const char *kThreeDomains = R"({"orvek-aaa:sysAaa": {"aaaDomain": {"domainInfo": [
  {"domainName": "one"}, {"domainName": "two"}, {"domainName": "three"}]}}})";

struct Way {
    const char *name; // for the test
    const char *manner;
    bool ends_the_walk; // the callback fails at the request
    bool kept;          // by the service
};

// In the list of tests.
void PrintTo(const Way &way, std::ostream *stream)
{
    *stream << way.manner;
}

constexpr Way kWays[] = {
    {"Refuse", "refuse 43", true, false},
    {"Late", "late 0.01", false, true},
    {"TooLate", "late 60", true, true},
    {"WrongLength", "wrong-length", false, true},
    {"Short", "short", false, true},
    {"Long", "long", false, true},
    {"Empty", "empty", false, true},
    {"Null", "null", false, true},
    {"Undecodable", "undecodable", true, true},
    {"Silent", "silent", true, false},
    {"Close", "close", true, false},
    {"CloseBefore", "close-before", true, false},
    {"Away", "away", true, false},
};

// What a run tells of its requests and of the state.
struct Told {
    std::size_t requests = 0;
    std::vector<std::string> domains; // that the service holds
};

Told toldBy(const std::string &output)
{
    Told told;
    for (const std::string &line : lines(output)) {
        const Json record = Json::parse(line);
        told.requests += record.at("record") == "request" ? 1U : 0U;
        if (record.at("record") == "state") {
            for (const Json &object : record.at("objects")) {
                told.domains.push_back(object.at("fields").at("domainName"));
            }
        }
    }
    return told;
}

class Misbehaving : public testing::TestWithParam<Way>
{
};

TEST_P(Misbehaving, AtEachRequestEndsAsItShould)
{
    const Way &way = GetParam();
    const std::vector<std::string> names = {"one", "two", "three"};
    const ScratchDirectory scratch;
    const std::string edit = scratch.write("edit.json", kThreeDomains);
    for (std::size_t number = 1; number <= names.size(); ++number) {
        const auto begin = std::chrono::steady_clock::now();
        const Outcome outcome =
            runAaanc({"apply", "--json", "--no-enabled", "--receive-timeout", "1", "--misbehave",
                      fmt::format("request {}: {}", number, way.manner), edit});
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
        EXPECT_EQ(outcome.status, way.ends_the_walk ? 1 : 0) << outcome.errors;
        const Told told = toldBy(outcome.output);
        EXPECT_EQ(told.requests, way.ends_the_walk ? number : names.size());
        std::vector<std::string> kept;
        for (std::size_t i = 1; i <= told.requests; ++i) {
            if (i != number || way.kept) {
                kept.push_back(names[i - 1]);
            }
        }
        std::ranges::sort(kept);
        EXPECT_EQ(told.domains, kept) << "request " << number;
    }
}

TEST_P(Misbehaving, AloneItDoesTheSame)
{
    const Way &way = GetParam();
    const ScratchDirectory scratch;
    const ScratchDirectory client;
    const std::string socket = scratch.path() + "/aaa.sock";
    const std::string edit = client.write("edit.json", kThreeDomains);
    Alone service(scratch.path(),
                  {"--json", "--misbehave", fmt::format("request 2: {}", way.manner)});
    const Outcome outcome = runAaanc(
        {"apply", "--json", "--no-enabled", "--receive-timeout", "1", "--socket", socket, edit});
    const Outcome served = service.end(SIGTERM);
    EXPECT_EQ(served.status, 128 + SIGTERM);
    EXPECT_FALSE(std::filesystem::exists(socket));
    EXPECT_EQ(outcome.status, way.ends_the_walk ? 1 : 0);
    EXPECT_EQ(toldBy(outcome.output).requests, way.ends_the_walk ? 2U : 3U);
    std::vector<std::string> kept = {"one"};
    if (!way.ends_the_walk) {
        kept.emplace_back("three");
    }
    if (way.kept) {
        kept.emplace_back("two");
    }
    EXPECT_EQ(toldBy(served.output).domains, kept);
}

std::string nameOf(const testing::TestParamInfo<Way> &parameter)
{
    return parameter.param.name;
}

INSTANTIATE_TEST_SUITE_P(All, Misbehaving, testing::ValuesIn(kWays), nameOf);

TEST(Misbehaviour, CanBeOfATypeOfMessage)
{
    const ScratchDirectory scratch;
    const std::string edit =
        scratch.write("edit.json", R"({"orvek-aaa:sysAaa": {"aaaGlobal": {"accountInterval": 15},
            "aaaDomain": {"domainInfo": [{"domainName": "one"}]}}})");
    const Outcome outcome = runAaanc({"apply", "--no-enabled", "--misbehave", "type 0: refuse 52",
                                      "--misbehave", "type 0: silent", edit});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find("answer               0 (accepted)"), std::string::npos);
    EXPECT_NE(outcome.output.find("answer               52 (refused)"), std::string::npos);
    EXPECT_NE(outcome.output.find("returned 8"), std::string::npos);
}

TEST(Misbehaviour, IsRead)
{
    const Misbehaviour refuse = parseMisbehaviour("request 3: refuse 43");
    EXPECT_EQ(refuse.request, 3U);
    EXPECT_EQ(refuse.type, std::nullopt);
    EXPECT_EQ(refuse.manner, Manner::Refuse);
    EXPECT_EQ(refuse.code, 43U);
    const Misbehaviour silent = parseMisbehaviour(" type 30 :silent ");
    EXPECT_EQ(silent.request, std::nullopt);
    EXPECT_EQ(silent.type, 30U);
    EXPECT_EQ(silent.manner, Manner::Silent);
    const Misbehaviour late = parseMisbehaviour("late 2.5");
    EXPECT_EQ(late.request, std::nullopt);
    EXPECT_EQ(late.delay, std::chrono::milliseconds(2500));
}

TEST(Misbehaviour, ThatIsNoneIsBadInput)
{
    for (const std::string rule : {"",
                                   "request 3:",
                                   "request: silent",
                                   "request 0: silent",
                                   "request x: silent",
                                   "request -1: silent",
                                   "type 2: silent",
                                   "type 30: away",
                                   "type 0: close-before",
                                   "every: silent",
                                   "sleep",
                                   "refuse",
                                   "refuse 0",
                                   "refuse 43 44",
                                   "refuse 4294967296",
                                   "late",
                                   "late -1",
                                   "late nan",
                                   "late 86401",
                                   "silent 3",
                                   "request 3 silent"}) {
        EXPECT_THROW(parseMisbehaviour(rule), std::invalid_argument) << rule;
        const Outcome outcome = runAaanc({"apply", "--misbehave", rule});
        EXPECT_EQ(outcome.status, 2) << rule;
        EXPECT_EQ(outcome.output, "") << rule;
        EXPECT_NE(outcome.errors.find("--misbehave"), std::string::npos) << rule;
    }
}

// The inodes of the sockets that a process has open.
std::vector<std::string> socketsOf(pid_t process)
{
    constexpr std::string_view kSocket = "socket:[";
    std::vector<std::string> inodes;
    for (const auto &entry :
         std::filesystem::directory_iterator(fmt::format("/proc/{}/fd", process))) {
        std::error_code closed; // since it was listed
        const std::string target = std::filesystem::read_symlink(entry.path(), closed);
        EXPECT_TRUE(!closed || closed == std::errc::no_such_file_or_directory) << closed.message();
        if (target.starts_with(kSocket)) {
            inodes.push_back(target.substr(kSocket.size(), target.size() - kSocket.size() - 1));
        }
    }
    return inodes;
}

std::string networkSockets(pid_t process)
{
    std::string all;
    for (const char *protocol : {"tcp", "tcp6", "udp", "udp6", "raw", "raw6"}) {
        std::ifstream file(fmt::format("/proc/{}/net/{}", process, protocol));
        for (std::string line; std::getline(file, line);) {
            all += line + "\n";
        }
    }
    return all;
}

// A service that never answers, so that there is time to look at the sockets and to end it.
TEST(Apply, WhileItWaitsItsSocketIsTheOwnersAloneAndGoesBySignal)
{
    std::signal(SIGHUP, SIG_DFL); // nohup(1) may run the tests
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        const ScratchDirectory temporary;
        const ScratchDirectory scratch;
        (void)scratch.write("edit.json", kThreeDomains);
        setenv("TMPDIR", temporary.path().c_str(), 1);
        Process process(scratch.path(), {"apply", "--json", "--misbehave", "silent", "edit.json"});
        unsetenv("TMPDIR");
        EXPECT_TRUE(eventually([&] { return !readText(scratch.path() + "/output").empty(); }));
        std::size_t sockets = 0;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(temporary.path())) {
            const auto mode = entry.status().permissions() & std::filesystem::perms::mask;
            if (entry.is_socket()) {
                ++sockets;
                EXPECT_EQ(mode, std::filesystem::perms(0600));
            } else {
                EXPECT_EQ(mode, std::filesystem::perms(0700)) << entry.path();
            }
        }
        EXPECT_EQ(sockets, 1U);
        const std::vector<std::string> open = socketsOf(process.id());
        EXPECT_FALSE(open.empty());
        const std::string network = networkSockets(process.id());
        EXPECT_FALSE(network.empty());
        for (const std::string &inode : open) {
            EXPECT_EQ(network.find(" " + inode + " "), std::string::npos);
        }
        const auto begin = std::chrono::steady_clock::now();
        kill(process.id(), signal);
        EXPECT_EQ(process.wait().status, 128 + signal);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
        EXPECT_TRUE(std::filesystem::is_empty(temporary.path()));
    }
}

} // namespace

} // namespace aaanc::test
