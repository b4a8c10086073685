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

// floor.hpp has them. The requests are sent one after another and from the start again.
using Floor = int (*)(const char *xpath, const AaaNcParam *requests, const LeafNames *names);

struct Workload {
    std::string name;                  // a file name, too
    const char *xpath = nullptr;       // subscribed
    Floor floor = nullptr;             // what it costs at least
    std::vector<CannedChange> changes; // of two entries
    std::vector<AaaNcParam> requests;  // that come of them, whole
    LeafNames names;                   // of the leaves that the callback knows
};

// Runs the workload's floor; see floor.hpp for `names`.
int runFloor(const Workload &workload, const LeafNames *names);

// Runs the plug-in's callback.
int runPlugin(const Workload &workload);

// The next walk creates `entries` entries. Where the two of the workload have
// been created, they come again.
void play(const Workload &workload, std::size_t entries);

// All of them, in the order of their subscription. They live as long as the program.
const std::vector<Workload> &workloads();

} // namespace aaanc::bench
