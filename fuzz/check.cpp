#include "check.hpp"

#include "harness/fake_platform.hpp"
#include "invariants.hpp"
#include "model/model.hpp"
#include "model/print.hpp"

namespace aaanc::test::fuzz
{

std::string checkScenario(const Scenario &scenario)
{
    // The plug-in is part of the executable.
    [[maybe_unused]] static const bool loaded = (loadPlugin(""), true);

    const Trace actual = play(scenario);
    std::string findings;
    for (const std::string &broken : brokenInvariants(scenario, actual))
        findings += broken + '\n';
    const Trace expected = model::expect(scenario);
    if (actual != expected)
        findings += "the plug-in and the model differ (-: the model, +: the plug-in)\n" +
                    model::printedDifference(expected, actual);
    if (!findings.empty())
        findings = model::printed(scenario) + '\n' + findings;
    return findings;
}

} // namespace aaanc::test::fuzz
