// aaanc replay: a recording, delivered once more.
#pragma once

#include <filesystem>
#include <vector>

#include "plugin_run.hpp"

namespace aaanc
{

struct ReplayOptions : RunOptions {
    std::vector<std::filesystem::path> traces;
    std::filesystem::path yang; // a directory; for the kinds of leaves
};

// Reads all recordings, then calls the plug-in's callbacks as they say, without
// a datastore. Returns 0 when all callbacks returned 0, else 1. Throws InputError
// before anything has been delivered, and std::runtime_error for what the system
// lacks.
int replay(const ReplayOptions &options, TerminationGuard &guard);

} // namespace aaanc
