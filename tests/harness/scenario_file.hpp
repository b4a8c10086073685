// Scenario files: what the platform delivers to a callback and how it behaves,
// and what the plug-in must do then. tests/scenarios/README.md is their manual.
#pragma once

#include "scenario.hpp"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace aaanc::test
{

struct ExpectedRequest {
    std::size_t line = 0; // where it stands in the file
    std::uint32_t message_type = 0;
    std::string block; // header and payload, in the machine's byte order
};

struct ScenarioCase {
    std::string file;
    std::size_t line = 0;
    std::string title;

    Scenario scenario;

    // All requests that are put to the service, in order.
    std::vector<ExpectedRequest> requests;
    // Trace lines. `logs`, when given, are all log lines; `errors` are all log
    // lines of severity ERR; `debugs` occur in this order, among others.
    std::optional<std::vector<std::string>> logs;
    std::vector<std::string> errors;
    std::vector<std::string> debugs;
    // The whole trace but its result; the bytes of a cmf-encode line are *.
    std::optional<std::vector<std::string>> calls;
    std::int32_t result = 0;
    bool iterator_stays_open = false;
};

// A mistake in a scenario file; what() starts with FILE:LINE.
class ScenarioError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Throws ScenarioError.
std::vector<ScenarioCase> readScenarioFile(const std::string &path);

// What is wrong with `trace` as the run of this case, a line a finding; empty
// when nothing is. Besides what the case names, these always hold: no WRONG
// line; each request's object record suits it; the values of each change are
// freed, the old one first, before the next change is taken; the iterator is
// freed as the last call, unless the case says that it stays open; every failure
// that the case plans happens.
std::vector<std::string> mismatches(const ScenarioCase &expected, const Trace &trace);

} // namespace aaanc::test
