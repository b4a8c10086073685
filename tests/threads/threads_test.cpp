// All eleven callbacks at once from many threads, each with changes of its own,
// through the socket to a service that is killed and restarted at random points.
#include <atomic>
#include <barrier>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "caller.hpp"
#include "services.hpp"

namespace aaanc::test
{

namespace
{

constexpr std::size_t kCallersPerCallback = 3;

struct Options {
    std::string plugin = AAANC_PLUGIN;
    std::string service = AAANC_EXECUTABLE;
    std::size_t kills = 8;
    std::uint64_t seed = 1;
} options;

std::size_t entriesOf(const char *directory)
{
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

class TemporaryPlace
{
public:
    TemporaryPlace()
    {
        std::string name = std::filesystem::temp_directory_path() / "threads-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error(name + ": cannot be made");
        }
        path_ = name;
    }
    ~TemporaryPlace()
    {
        std::filesystem::remove_all(path_);
    }
    TemporaryPlace(const TemporaryPlace &) = delete;
    TemporaryPlace &operator=(const TemporaryPlace &) = delete;
    [[nodiscard]] const std::filesystem::path &path() const
    {
        return path_;
    }

private:
    std::filesystem::path path_;
};

void sleepUpTo(model::Random &random, std::uint32_t milliseconds)
{
    std::this_thread::sleep_for(std::chrono::microseconds(random.below(milliseconds * 1000)));
}

// Kills the service so many times, each time a while after it has come up, and
// leaves it away for a while.
void killAgainAndAgain(Service &service)
{
    constexpr std::uint32_t kUp = 200; // milliseconds
    constexpr std::uint32_t kAway = 10;
    model::Random random(options.seed, 0);
    for (std::size_t left = options.kills; left > 0; --left) {
        sleepUpTo(random, kUp);
        service.kill();
        sleepUpTo(random, kAway);
        service.start();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(kUp)); // the last callbacks find it
}

// Lets all callers play until `end` returns.
template <typename Action> Tally playUntil(Action end)
{
    const std::size_t count = kCallersPerCallback * model::schemas().size();
    const auto size = static_cast<std::ptrdiff_t>(count);
    std::atomic<bool> ended = false;
    bool going_on = true; // the same for all in a round
    std::barrier round(size, [&]() noexcept { going_on = !ended; });
    std::barrier<> together(size);
    std::vector<std::unique_ptr<Caller>> callers;
    for (std::size_t i = 0; i < count; ++i) {
        callers.push_back(std::make_unique<Caller>(options.plugin,
                                                   model::schemas()[i % model::schemas().size()],
                                                   options.seed, i + 1, together));
    }
    const auto play = [&](Caller &caller) {
        while (round.arrive_and_wait(), going_on) {
            caller.playRound();
        }
    };
    {
        std::vector<std::jthread> threads;
        for (const auto &caller : callers) {
            threads.emplace_back([&] { play(*caller); });
        }
        end();
        ended = true;
    }
    Tally tally;
    for (const auto &caller : callers) {
        tally.add(caller->tally());
    }
    return tally;
}

void expectAllServed(const Tally &tally, const Served &served)
{
    EXPECT_EQ(served.odd, std::vector<std::string>());
    for (const auto &[block, count] : tally.accepted_blocks) {
        const auto found = served.blocks.find(block);
        EXPECT_GE(found == served.blocks.end() ? 0 : found->second, count)
            << "accepted, but not served: " << block;
    }
}

void runWith(Service &service, const std::string &name, const std::string &socket)
{
    ExchangeSorter sorter;
    const CmfEndpoint endpoint{socket, std::chrono::seconds(60), &sorter};
    std::jthread([] {}).join(); // a sanitizer adds a thread of its own to the first
    const std::size_t descriptors = entriesOf("/proc/self/fd");
    const std::size_t threads = entriesOf("/proc/self/task");

    service.start();
    setCmfEndpoint(&endpoint);
    const Tally tally = playUntil([&] { killAgainAndAgain(service); });
    setCmfEndpoint(nullptr);
    service.end();

    EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
    EXPECT_EQ(entriesOf("/proc/self/task"), threads);
    expectAllServed(tally, service.served());
    // All that may happen did, and nothing else.
    EXPECT_GT(tally.accepted, 0U);
    EXPECT_GT(tally.not_connected, 0U);
    EXPECT_GT(tally.lost, 0U);
    EXPECT_EQ(tally.timed_out, 0U);
    fmt::print(
        "threads, {}: {} callers, {} callbacks ({} with a result other than 0), {} requests: "
        "{} accepted, {} refused, {} without a service, {} lost in {} kills\n",
        name, kCallersPerCallback * model::schemas().size(), tally.callbacks, tally.failed,
        tally.accepted + tally.refused + tally.not_connected + tally.lost, tally.accepted,
        tally.refused, tally.not_connected, tally.lost, options.kills);
}

TEST(Threads, InProcess)
{
    const TemporaryPlace place;
    const std::string socket = place.path() / "aaa";
    ServiceInProcess service(socket, options.seed);
    runWith(service, "service in the same process", socket);
}

TEST(Threads, Alone)
{
    const TemporaryPlace place;
    const std::string socket = place.path() / "aaa";
    ServiceAlone service(options.service, socket, place.path());
    runWith(service, "service as a process of its own", socket);
}

bool readNumber(std::string_view text, auto &number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool readOption(std::string_view argument)
{
    const std::size_t equals = argument.find('=');
    const std::string_view name = argument.substr(0, equals);
    const std::string_view value =
        equals == std::string_view::npos ? "" : argument.substr(equals + 1);
    if (name == "--plugin") {
        options.plugin = value;
        return !value.empty();
    }
    if (name == "--service") {
        options.service = value;
        return !value.empty();
    }
    return (name == "--kills" && readNumber(value, options.kills)) ||
           (name == "--seed" && readNumber(value, options.seed));
}

} // namespace

} // namespace aaanc::test

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        if (!aaanc::test::readOption(argv[i])) {
            fmt::print(
                stderr,
                "usage: threads_test [--plugin=PATH] [--service=PATH] [--kills=N] [--seed=N]\n");
            return 2;
        }
    }
    return RUN_ALL_TESTS();
}
