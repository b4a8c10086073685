#include "check.hpp"

#include "harness/fake_platform.hpp"
#include "model/model.hpp"
#include "model/print.hpp"
#include "requests.hpp"
#include "torture/invariants.hpp"

namespace aaanc::test::fuzz
{

std::string checkScenario(const Scenario &scenario)
{
    // The plug-in is part of the executable.
    [[maybe_unused]] static const bool loaded = (loadPlugin(""), true);

    const Trace actual = play(scenario);
    std::string findings;
    for (const auto &broken :
         {brokenInvariants(scenario, actual), brokenRequests(scenario, actual)})
        for (const std::string &finding : broken)
            findings += finding + '\n';
    const Trace expected = model::expect(scenario);
    if (actual != expected)
        findings += "the plug-in and the model differ (-: the model, +: the plug-in)\n" +
                    model::printedDifference(expected, actual);
    if (!findings.empty())
        findings = model::printed(scenario) + '\n' + findings;
    return findings;
}

} // namespace aaanc::test::fuzz
