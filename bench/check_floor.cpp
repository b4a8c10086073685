// Holds each floor to what it stands for: the same platform calls as the
// plug-in's, in the same order, sending the same bytes.
#include "plugin.hpp"
#include "workload.hpp"

#include <cstdio>

using namespace aaanc::bench;

namespace
{

std::vector<std::string> calls;

void take(const char *call, const void *bytes, std::size_t length)
{
    calls.push_back(call + std::string(" ") +
                    std::string(static_cast<const char *>(bytes), length));
}

template <typename Walk> std::vector<std::string> callsOf(const Workload &workload, Walk walk)
{
    calls.clear();
    play(workload, 4);
    observe(take);
    const int rc = walk();
    observe(nullptr);
    calls.push_back("result " + std::to_string(rc));
    return calls;
}

bool floorHolds(const Workload &workload)
{
    const auto plugin = callsOf(workload, [&] { return runPlugin(workload); });
    const auto floor = callsOf(workload, [&] { return runFloor(workload, nullptr); });
    if (plugin == floor)
        return true;
    for (std::size_t i = 0; i < plugin.size() || i < floor.size(); ++i) {
        const char *ours = i < plugin.size() ? plugin[i].c_str() : "nothing";
        const char *theirs = i < floor.size() ? floor[i].c_str() : "nothing";
        if (i >= plugin.size() || i >= floor.size() || plugin[i] != floor[i]) {
            std::fprintf(stderr, "%s: call %zu: the plug-in makes %s, the floor %s\n",
                         workload.name.c_str(), i + 1, ours, theirs);
            break;
        }
    }
    return false;
}

} // namespace

int main()
{
    loadPlugin();
    bool all_hold = true;
    for (const Workload &workload : workloads())
        all_hold = floorHolds(workload) && all_hold;
    return all_hold ? 0 : 1;
}
