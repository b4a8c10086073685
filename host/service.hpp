// aaanc service: the AAA service alone.
#pragma once

#include <string>

#include "termination.hpp"
#include "writers.hpp"

namespace aaanc
{

// Serves at `socket`, telling of each request, until a signal ends it. Throws
// std::runtime_error where no socket can be made.
void serveAlone(const std::string &socket, const OutputOptions &output, TerminationGuard &guard);

} // namespace aaanc
