// A run of the plug-in: the library, an AAA service for it, and a report of all
// that happens. Where the changes come from is its user's matter.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "delivery.hpp"
#include "misbehaviour.hpp"
#include "reporter.hpp"
#include "termination.hpp"
#include "writers.hpp"

namespace aaanc
{

struct RunOptions {
    std::filesystem::path plugin;
    std::optional<std::string> socket; // of a service that runs alone
    std::chrono::milliseconds time_limit{5000};
    std::optional<std::filesystem::path> record; // write what is delivered into this file
    std::vector<Misbehaviour> misbehaviours;     // of our own service
    OutputOptions output;
};

// Tells the plug-in changes. The reason if that ends early, else empty.
using Telling = std::function<std::string(Delivery &delivery, Reporter &reporter)>;

// Starts the AAA service and the plug-in, has `tell` tell it, and ends both.
// Returns 0 when all callbacks returned 0, else 1. Throws InputError where
// the recording cannot be made, std::runtime_error for what the system lacks, and
// what `tell` throws.
int runPlugin(const RunOptions &options, TerminationGuard &guard, const Telling &tell);

} // namespace aaanc
