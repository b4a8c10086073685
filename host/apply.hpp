// aaanc apply: a whole switch on a desk.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "plugin_run.hpp"

namespace aaanc
{

struct ApplyOptions : RunOptions {
    std::optional<std::filesystem::path> startup;
    std::vector<std::filesystem::path> edits;
    std::filesystem::path yang; // a directory
    bool enabled = true;        // tell the plug-in of the start-up configuration
};

// Reads and checks all input, then starts the AAA service and the plug-in, tells
// the plug-in of the start-up configuration, and commits each edit in turn.
// Returns 0 when all callbacks returned 0, else 1. Throws InputError before
// anything has been told to the plug-in, and std::runtime_error for what the
// system lacks.
int apply(const ApplyOptions &options, TerminationGuard &guard);

} // namespace aaanc
