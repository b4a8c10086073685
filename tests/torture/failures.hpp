// Every way in which one platform call of a run can fail.
#pragma once

#include "harness/scenario.hpp"

#include <functional>
#include <string>

namespace aaanc::test
{

// Takes a scenario in which one call fails, and what fails in it.
using TakeFailure = std::function<void(const Scenario &failing, const std::string &what)>;

// Calls `take` for each way in which each call of `trace` can fail, where `trace`
// is a run of `scenario`. Returns the number of calls that can fail; the others
// (log lines, copies, frees) have no result that the plug-in could look at.
std::size_t forEachFailure(const Scenario &scenario, const Trace &trace, const TakeFailure &take);

} // namespace aaanc::test
