// Scenarios and traces for a reader.
#pragma once

#include "../harness/scenario.hpp"

#include <string>

namespace aaanc::test::model
{

// As a scenario file writes it, to be pasted into one; without expectations.
std::string printed(const Scenario &scenario);

// Both traces: what they share from the start once, then where they part.
std::string printedDifference(const Trace &expected, const Trace &actual);

} // namespace aaanc::test::model
