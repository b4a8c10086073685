// Random scenarios: plausible edits of a subtree, more or less disturbed, on a
// platform that fails now and then.
#pragma once

#include "../harness/scenario.hpp"

#include <cstdint>

namespace aaanc::test::model
{

// Scenario number `index` of the run `seed`; the same on every target.
Scenario randomScenario(std::uint64_t seed, std::uint64_t index);

} // namespace aaanc::test::model
