// What holds of the requests of every run, whatever the changes and whatever the
// platform does: it is read off the trace alone, without the model.
#pragma once

#include "harness/scenario.hpp"

#include <string>
#include <vector>

namespace aaanc::test::fuzz
{

// Which of these do not hold of `trace`, as the run of `scenario`:
// - contexts do not overlap; the steps of a request come in their order, none
//   after one that failed, and the close behind the last
// - a request's type is one of the callback's, its length is that type's, and its
//   object record names the same type and operation
// - the numbers that the plug-in chooses are in their range, texts are terminated,
//   and the bytes that no field fills are zero
// - nothing is logged that the log level does not let through
// - the result comes last
std::vector<std::string> brokenRequests(const Scenario &scenario, const Trace &trace);

} // namespace aaanc::test::fuzz
