// aaanc apply: a whole switch on a desk.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "termination.hpp"
#include "writers.hpp"

namespace aaanc
{

struct ApplyOptions {
    std::optional<std::filesystem::path> startup;
    std::vector<std::filesystem::path> edits;
    std::filesystem::path plugin;
    std::filesystem::path yang;        // a directory
    std::optional<std::string> socket; // of a service that runs alone
    std::chrono::milliseconds time_limit{5000};
    bool enabled = true; // tell the plug-in of the start-up configuration
    OutputOptions output;
};

// Reads and checks all input, then starts the AAA service and the plug-in, tells
// the plug-in of the start-up configuration, and commits each edit in turn.
// Returns 0 when all callbacks returned 0, else 1. Throws InputError before
// anything has been told to the plug-in, and std::runtime_error for what the
// system lacks.
int apply(const ApplyOptions &options, TerminationGuard &guard);

} // namespace aaanc
