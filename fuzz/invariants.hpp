// What holds of every run of a callback, whatever the changes and whatever the
// platform does: it is not the model that says so, but the contracts.
#pragma once

#include "harness/scenario.hpp"

#include <string>
#include <vector>

namespace aaanc::test::fuzz
{

// Which of these do not hold of `trace`, as the run of `scenario`:
// - nothing is misused (no WRONG line), and the result comes last
// - each context is closed once, after its last step; steps come in their order,
//   and none after one that failed
// - a request's type is one of the callback's, its length is that type's, and its
//   object record names the same type and operation; numbers are in their range,
//   texts are terminated, and the bytes that no field fills are zero
// - each change's values are freed once, the old one first, before the next
//   change is taken; nothing else is freed
// - the iterator is freed once, last of all, unless the callback is one that
//   keeps it on purpose
// - nothing is logged that the log level does not let through
std::vector<std::string> brokenInvariants(const Scenario &scenario, const Trace &trace);

} // namespace aaanc::test::fuzz
