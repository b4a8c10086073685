// What the plug-in must do for a scenario, worked out by an executable model of
// the change processing: every platform call in order, every log line, every
// byte of every request, every free, and the result.
//
// The model shares no code and no shape with the plug-in: it throws to end a
// walk, keeps its records as named strings and numbers, and lays bytes out only
// when a request is sent.
#pragma once

#include "../harness/scenario.hpp"

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace aaanc::test::model
{

// What the model decided on the way and the trace does not show by itself; the
// coverage table counts on it.
struct Facts {
    std::set<std::string> happened;
    std::vector<std::pair<std::string, bool>> addresses_checked; // text, acceptable
};

struct Expectation {
    Trace trace;
    Facts facts;
};

// The trace and the facts for `scenario`. Throws std::invalid_argument for a
// callback that does not exist.
Expectation explain(const Scenario &scenario);

// The trace alone.
Trace expect(const Scenario &scenario);

} // namespace aaanc::test::model
