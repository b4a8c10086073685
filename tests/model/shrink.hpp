// Makes a scenario as small and as plain as it can be while it still fails.
#pragma once

#include "../harness/scenario.hpp"

#include <functional>

namespace aaanc::test::model
{

// `fails` tells whether a scenario still shows what is looked for. It holds for
// `scenario` and for the result; no single step of the shrinker makes the
// result any smaller.
Scenario shrunk(const Scenario &scenario, const std::function<bool(const Scenario &)> &fails);

} // namespace aaanc::test::model
