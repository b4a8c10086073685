#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "apply.hpp"
#include "locations.hpp"
#include "printable.hpp"
#include "service.hpp"
#include "sysrepo.h"

namespace
{

constexpr int kBadInput = 2;

void addOutputOptions(CLI::App &command, aaanc::OutputOptions &output)
{
    command.add_flag("--json", output.json, "A JSON object a line for each record");
    command.add_flag("--hex", output.hex, "Show each parameter block as bytes, too");
    command.add_flag("--show-keys", output.show_keys, "Show shared keys, instead of ****");
}

CLI::App *addApply(CLI::App &app, aaanc::ApplyOptions &options, double &seconds)
{
    CLI::App *apply = app.add_subcommand(
        "apply", "Commit edits to a datastore that the plug-in is subscribed to, and show what it "
                 "asks of the AAA service");
    apply->add_option("EDIT", options.edits,
                      "Files of edits (XML or JSON, - for standard input), committed one by one");
    apply->add_option("--startup", options.startup, "File of the configuration at start-up");
    apply->add_flag("--no-enabled{false},--enabled", options.enabled,
                    "Do not tell the plug-in of the start-up configuration");
    apply
        ->add_option("--log-level", srp_ll_syslog,
                     "Log lines of the plug-in, to standard error: 0 none, 1 errors, 4 all")
        ->check(CLI::Range(0, 4));
    apply->add_option("--plugin", options.plugin, "The plug-in")->capture_default_str();
    apply->add_option("--yang", options.yang, "Directory of orvek-aaa.yang")->capture_default_str();
    apply->add_option("--socket", options.socket,
                      "Socket of an AAA service that runs alone (aaanc service)");
    apply->add_option("--receive-timeout", seconds, "Seconds that an answer may take")
        ->check(CLI::Range(0.001, 86400.0))
        ->capture_default_str();
    addOutputOptions(*apply, options.output);
    return apply;
}

int run(int argc, char **argv)
{
    CLI::App app("Runs the AAA configuration plug-in of a switch off the device.", "aaanc");
    app.require_subcommand(1);

    aaanc::ApplyOptions apply_options;
    apply_options.plugin = aaanc::defaultPlugin();
    apply_options.yang = aaanc::defaultYang();
    double seconds = 5;
    const CLI::App *apply = addApply(app, apply_options, seconds);

    std::string socket;
    aaanc::OutputOptions service_output;
    CLI::App *service = app.add_subcommand("service", "Run the AAA service alone");
    service->add_option("--socket", socket, "Where to listen")->required();
    addOutputOptions(*service, service_output);

    // CLI11 would only say that a command is missing.
    const auto is_first = [=](const CLI::App *command) { return command->get_name() == argv[1]; };
    if (argc > 1 && argv[1][0] != '-' &&
        std::ranges::none_of(app.get_subcommands(nullptr), is_first)) {
        fmt::print(stderr, "aaanc: unknown command \"{}\"; see aaanc --help\n",
                   aaanc::printable(argv[1]));
        return kBadInput;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : kBadInput;
    }

    aaanc::TerminationGuard guard;
    if (*apply) {
        apply_options.time_limit = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::duration<double>(seconds));
        return aaanc::apply(apply_options, guard);
    }
    aaanc::serveAlone(socket, service_output, guard);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        fmt::print(stderr, "aaanc: {}\n", error.what());
        return kBadInput;
    }
}
