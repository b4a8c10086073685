// What each of the eleven callbacks is given to do: the creation of list
// entries, shaped as sysrepo delivers it.
#pragma once

#include "aaa_nc/param.hpp"
#include "floor.hpp"
#include "null_platform.hpp"

#include <string>
#include <vector>

namespace aaanc::bench
{

// floor.hpp has them.
using Floor = int (*)(const char *xpath, Requests requests, const LeafNames *names);

struct Workload {
    std::string name;            // a file name, too
    const char *xpath = nullptr; // subscribed
    Floor floor = nullptr;       // what it costs at least
    std::size_t entries = 0;
    std::vector<CannedChange> changes; // that create them
    std::vector<AaaNcParam> requests;  // that come of them, whole
    LeafNames names;                   // of the leaves that the callback knows
};

// Runs the workload's floor; see floor.hpp for `names`.
int runFloor(const Workload &workload, const LeafNames *names);

// Runs the plug-in's callback.
int runPlugin(const Workload &workload);

// The next walk creates `entries` entries. Where those of the workload have been
// created, they come again.
void play(const Workload &workload, std::size_t entries);

// All of them, in the order of their subscription. They live as long as the program.
const std::vector<Workload> &workloads();

// `count` RADIUS servers over IPv4, each of an address of its own: 10.0.0.0 and on.
Workload radiusServers(std::size_t count);

} // namespace aaanc::bench
