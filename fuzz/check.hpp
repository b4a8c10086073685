// Plays one scenario and holds what the plug-in did against the invariants and
// against the model.
#pragma once

#include "harness/scenario.hpp"

#include <string>

namespace aaanc::test::fuzz
{

// What is wrong, for a reader; nothing when all is well.
std::string checkScenario(const Scenario &scenario);

} // namespace aaanc::test::fuzz
