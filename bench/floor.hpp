// What each callback's work costs at least: a loop written by hand for it that
// makes the same platform calls, its requests ready-made. It knows by their
// place what the changes are; with `names` not null it compares each leaf's name
// with those, as any loop must that does not know what comes.
#pragma once

#include "aaa_nc/param.hpp"

#include <span>
#include <vector>

namespace aaanc::bench
{

using LeafNames = std::vector<const char *>;
using Requests = std::span<const AaaNcParam>; // sent one after another and from the start again

int floorGlobal(const char *xpath, Requests requests, const LeafNames *names);
int floorSrcInterface(const char *xpath, Requests requests, const LeafNames *names);
int floorServerGroup(const char *xpath, Requests requests, const LeafNames *names);
int floorServerGroupVrf(const char *xpath, Requests requests, const LeafNames *names);
int floorDomain(const char *xpath, Requests requests, const LeafNames *names);
int floorRadius(const char *xpath, Requests requests,
                const LeafNames *names); // IPv4 and IPv6
int floorTacacs(const char *xpath, Requests requests,
                const LeafNames *names); // IPv4 and IPv6
int floorDomainAuthen(const char *xpath, Requests requests, const LeafNames *names);
int floorDomainAccount(const char *xpath, Requests requests, const LeafNames *names);

} // namespace aaanc::bench
