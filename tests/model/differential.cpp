// Plays random scenarios through the built plug-in and holds what it does
// against the model. README.md tells how to replay a difference.
#include "../harness/fake_platform.hpp"
#include "generator.hpp"
#include "model.hpp"
#include "print.hpp"
#include "shrink.hpp"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <stdexcept>

namespace aaanc::test::model {
namespace {

struct Options {
    std::string plugin = AAANC_PLUGIN;
    std::uint64_t seed = 1;
    std::uint64_t from = 0;
    std::uint64_t count = 1000;
    bool show = false;
};

bool differs(const Scenario &scenario)
{
    return play(scenario) != expect(scenario);
}

void report(const Options &options, std::uint64_t index, const Scenario &scenario)
{
    const Scenario smallest = shrunk(scenario, differs);
    std::cout << "The plug-in and the model differ. Replay: --seed " << options.seed << " --from "
              << index << " --count 1\n\nSmallest scenario:\n"
              << printed(smallest) << "\nTrace (-: the model, +: the plug-in):\n"
              << printedDifference(expect(smallest), play(smallest)) << std::flush;
}

int run(const Options &options)
{
    loadPlugin(options.plugin);
    for (std::uint64_t index = options.from; index < options.from + options.count; ++index) {
        const Scenario scenario = randomScenario(options.seed, index);
        if (differs(scenario)) {
            report(options, index, scenario);
            return 1;
        }
    }
    return 0;
}

} // namespace
} // namespace aaanc::test::model

int main(int argc, char **argv)
{
    using namespace aaanc::test::model;
    Options options;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string name = argv[i];
        const std::uint64_t v = std::strtoull(argv[i + 1], nullptr, 10);
        if (name == "--seed") options.seed = v;
        if (name == "--from") options.from = v;
        if (name == "--count") options.count = v;
    }
    return run(options);
}
