// aaanc service: the AAA service alone.
#pragma once

#include <string>
#include <vector>

#include "misbehaviour.hpp"
#include "termination.hpp"
#include "writers.hpp"

namespace aaanc
{

struct ServiceOptions {
    std::string socket;
    std::vector<Misbehaviour> misbehaviours;
    OutputOptions output;
};

// Serves, telling of each request, until a signal ends it, and tells then what it
// holds. Returns the exit status; throws std::runtime_error where no socket can be
// made.
int serveAlone(const ServiceOptions &options, TerminationGuard &guard);

} // namespace aaanc
