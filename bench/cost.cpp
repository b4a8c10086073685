// Walks for callgrind to count: each workload by the plug-in and by its floors,
// in several sizes. Started by scripts/bench; each walk becomes a dump named
// "<workload> <who> <entries>".
#include "plugin.hpp"
#include "workload.hpp"

#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

using namespace aaanc::bench;

namespace
{

template <typename Walk>
void count(const Workload &workload, const char *who, std::size_t entries, Walk walk)
{
    // Once unseen, for the dynamic linker to bind what is called.
    play(workload, 2);
    walk();

    play(workload, entries);
    CALLGRIND_TOGGLE_COLLECT;
    const int rc = walk();
    CALLGRIND_TOGGLE_COLLECT;
    const std::string title = workload.name + ' ' + who + ' ' + std::to_string(entries);
    CALLGRIND_DUMP_STATS_AT(title.c_str());
    if (rc != 0) {
        std::fprintf(stderr, "%s ends with %d\n", title.c_str(), rc);
        std::exit(1);
    }
}

void countAll(int argc, char **argv)
{
    for (const Workload &workload : workloads()) {
        for (int i = 1; i < argc; ++i) {
            const std::size_t entries = std::strtoul(argv[i], nullptr, 10);
            count(workload, "plugin", entries, [&] { return runPlugin(workload); });
            count(workload, "calls", entries, [&] { return runFloor(workload, nullptr); });
            count(workload, "names", entries, [&] { return runFloor(workload, &workload.names); });
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    loadPlugin();
    // What libc spends on a text depends a little on where it lies. A thread has its
    // stack and its heap at the same offsets, whatever path and environment it is
    // started from.
    std::thread(countAll, argc, argv).join();
}
