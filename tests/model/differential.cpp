// Plays random scenarios through the built plug-in and holds everything that it
// does against the model. README.md tells how to use it.
#include "../harness/fake_platform.hpp"
#include "coverage.hpp"
#include "generator.hpp"
#include "model.hpp"
#include "print.hpp"
#include "shrink.hpp"

#include <charconv>
#include <cstring>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace aaanc::test::model
{
namespace
{

constexpr const char *kUsage =
    "usage: aaanc-differential [--seed S] [--from N] [--count N] [--plugin PATH]\n"
    "                          [--coverage] [--show]\n"
    "  --seed S       the run; a scenario is known by its seed and its number (1)\n"
    "  --from N       number of the first scenario (0)\n"
    "  --count N      how many scenarios (1000)\n"
    "  --plugin PATH  the plug-in (the one of this build)\n"
    "  --coverage     print how often each behaviour occurred; fail if one did not\n"
    "  --show         print each scenario and what the model expects; play nothing\n";

struct Options {
    std::string plugin = AAANC_PLUGIN;
    std::uint64_t seed = 1;
    std::uint64_t from = 0;
    std::uint64_t count = 1000;
    bool coverage = false;
    bool show = false;
};

std::uint64_t number(const char *option, std::string_view text)
{
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        throw std::invalid_argument(std::string(option) + ": not a number: " + std::string(text));
    return value;
}

Options readOptions(int argc, char **argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        const auto value = [&] {
            if (i + 1 == argc)
                throw std::invalid_argument(option + ": a value is missing");
            return argv[++i];
        };
        if (option == "--seed")
            options.seed = number("--seed", value());
        else if (option == "--from")
            options.from = number("--from", value());
        else if (option == "--count")
            options.count = number("--count", value());
        else if (option == "--plugin")
            options.plugin = value();
        else if (option == "--coverage")
            options.coverage = true;
        else if (option == "--show")
            options.show = true;
        else
            throw std::invalid_argument("no such option: " + option);
    }
    return options;
}

bool differs(const Scenario &scenario)
{
    return play(scenario) != expect(scenario);
}

void show(std::uint64_t index, const Scenario &scenario)
{
    std::cout << "# scenario " << index << '\n' << printed(scenario);
    for (const std::string &line : expect(scenario))
        std::cout << "  " << line << '\n';
}

void reportDifference(const Options &options, std::uint64_t index, const Scenario &scenario)
{
    std::cout << "Scenario " << index
              << ": the plug-in and the model differ.\nReplay it with --seed " << options.seed
              << " --from " << index << " --count 1\n"
              << std::flush;
    const Scenario smallest = shrunk(scenario, differs);
    std::cout << "\nThe smallest scenario that differs:\n\n"
              << printed(smallest) << "\nIts trace (-: the model's, +: the plug-in's):\n\n"
              << printedDifference(expect(smallest), play(smallest));
}

int reportCoverage(const Coverage &coverage)
{
    std::cout << coverage.table();
    for (const std::string &name : coverage.missing())
        std::cout << "Did not occur: " << name << '\n';
    return coverage.missing().empty() ? 0 : 1;
}

int run(const Options &options)
{
    Coverage coverage;
    for (std::uint64_t index = options.from; index - options.from < options.count; ++index) {
        const Scenario scenario = randomScenario(options.seed, index);
        if (options.show) {
            show(index, scenario);
            continue;
        }
        const Expectation expected = explain(scenario);
        if (play(scenario) != expected.trace) {
            reportDifference(options, index, scenario);
            return 1;
        }
        if (options.coverage)
            coverage.add(Story(scenario, expected));
    }
    std::cout << options.count
              << (options.show ? " scenarios shown\n" : " scenarios, no difference\n");
    return options.coverage ? reportCoverage(coverage) : 0;
}

} // namespace
} // namespace aaanc::test::model

int main(int argc, char **argv)
{
    using namespace aaanc::test;
    try {
        const model::Options options = model::readOptions(argc, argv);
        if (!options.show)
            loadPlugin(options.plugin);
        return model::run(options);
    } catch (const std::invalid_argument &error) {
        std::cerr << error.what() << '\n' << model::kUsage;
    } catch (const std::exception &error) {
        std::cerr << error.what() << '\n';
    }
    return 2;
}
