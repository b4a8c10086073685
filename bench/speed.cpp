// Time of each workload, by the plug-in and by its floors, and of one exchange
// over a Unix socket, both ends on one processor and on two.
#include "plugin.hpp"
#include "round_trip.hpp"
#include "workload.hpp"

#include <benchmark/benchmark.h>

#include <sched.h>

using namespace aaanc::bench;

namespace
{

constexpr std::int64_t kEntries = 1000;

template <typename Walk> void run(benchmark::State &state, const Workload &workload, Walk walk)
{
    for (auto _ : state) {
        play(workload, std::size_t{kEntries});
        if (walk() != 0)
            state.SkipWithError("the walk fails");
    }
    state.SetItemsProcessed(state.iterations() * kEntries);
}

void registerWorkload(const Workload &workload)
{
    benchmark::RegisterBenchmark((workload.name + "/plugin").c_str(), [&](auto &state) {
        run(state, workload, [&] { return runPlugin(workload); });
    });
    benchmark::RegisterBenchmark((workload.name + "/calls").c_str(), [&](auto &state) {
        run(state, workload, [&] { return runFloor(workload, nullptr); });
    });
    benchmark::RegisterBenchmark((workload.name + "/names").c_str(), [&](auto &state) {
        run(state, workload, [&] { return runFloor(workload, &workload.names); });
    });
}

// Where this thread may run, and those that it starts; as before in the end.
class Affinity
{
public:
    Affinity()
    {
        sched_getaffinity(0, sizeof(before_), &before_);
    }
    ~Affinity()
    {
        sched_setaffinity(0, sizeof(before_), &before_);
    }
    Affinity(const Affinity &) = delete;
    Affinity &operator=(const Affinity &) = delete;

    // On the n-th processor that there is, counted round and round.
    void pin(int n) const
    {
        n %= CPU_COUNT(&before_);
        std::size_t processor = 0;
        while (!CPU_ISSET(processor, &before_) || n-- > 0)
            ++processor;
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(processor, &one);
        sched_setaffinity(0, sizeof(one), &one);
    }

private:
    cpu_set_t before_;
};

void roundTrip(benchmark::State &state, int service_processor)
{
    const Affinity affinity;
    affinity.pin(service_processor);
    const Service service;
    affinity.pin(0);
    for (auto _ : state)
        if (!service.roundTrip(sizeof(AaaNcParamHeader) + 520)) // a TACACS server
            state.SkipWithError("no answer");
}

} // namespace

int main(int argc, char **argv)
{
    loadPlugin();
    for (const Workload &workload : workloads())
        registerWorkload(workload);
    benchmark::RegisterBenchmark("round-trip/together", roundTrip, 0);
    benchmark::RegisterBenchmark("round-trip/apart", roundTrip, 1);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
}
