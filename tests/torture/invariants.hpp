// What holds in every run, whatever fails in it. It is read off the trace alone,
// so that a mistake that plug-in and model share does not hide here.
#pragma once

#include "harness/scenario.hpp"

#include <string>
#include <vector>

namespace aaanc::test
{

// What is wrong with `trace` as a run of `scenario`, a line a finding: misuse of
// the platform, a context that is not closed once, a value that is not freed
// once before the next change is taken, an iterator that is not freed where it
// must be or is freed where it must not.
std::vector<std::string> brokenInvariants(const Scenario &scenario, const Trace &trace);

} // namespace aaanc::test
