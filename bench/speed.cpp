// Time of each workload, by the plug-in and by its floors, and of one exchange
// over a Unix socket.
#include "plugin.hpp"
#include "round_trip.hpp"
#include "workload.hpp"

#include <benchmark/benchmark.h>

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

void roundTrip(benchmark::State &state)
{
    const Service service;
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
    // Of both threads; the wall clock would also tell what else the machine does.
    benchmark::RegisterBenchmark("round-trip", roundTrip)->MeasureProcessCPUTime();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
}
