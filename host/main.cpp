#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <sstream>
#include <string>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "apply.hpp"
#include "decode.hpp"
#include "locations.hpp"
#include "printable.hpp"
#include "replay.hpp"
#include "service.hpp"
#include "standard_streams.hpp"
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

CLI::Option *addMisbehaviour(CLI::App &command, std::vector<aaanc::Misbehaviour> &rules)
{
    CLI::Option *misbehave = command.add_option_function<std::vector<std::string>>(
        "--misbehave",
        [&rules](const std::vector<std::string> &texts) {
            for (const std::string &text : texts) {
                try {
                    rules.push_back(aaanc::parseMisbehaviour(text));
                } catch (const std::invalid_argument &error) {
                    throw CLI::ValidationError("--misbehave", error.what());
                }
            }
        },
        "How the AAA service misbehaves; again for more, of which the first that fits counts");
    misbehave->type_name("'[request N: | type T: ]MANNER'")->allow_extra_args(false);
    command.footer(
        "Ways to misbehave, at every request, at the n-th or at those of a type:\n" +
        aaanc::mannersHelp() +
        "Nothing is kept of a request that is met by refuse, silent, close, close-before\n"
        "or away. What the service accepts of the others is kept, though its answer comes\n"
        "too late or cannot be read.\n\n"
        "Examples of --misbehave:\n"
        "  'request 3: refuse 43'   the third request is refused with code 43\n"
        "  'type 30: silent'        no answer for any TACACS server\n"
        "  'late 2.5'               every answer comes 2.5 seconds late\n"
        "  'request 1: away'        there is no service");
    return misbehave;
}

void addExamples(CLI::App &command, const std::string &examples)
{
    command.footer(command.get_footer() + "\n\nExamples:\n" + examples);
}

// CLI::Range takes it for a number in any range.
std::string refuseNan(const std::string &text)
{
    return std::isnan(std::strtod(text.c_str(), nullptr)) ? text + " is no number of seconds" : "";
}

// What apply and replay have in common. `seconds` is the time limit.
void addRunOptions(CLI::App &command, aaanc::RunOptions &options, double &seconds)
{
    command
        .add_option("--log-level", srp_ll_syslog,
                    "Log lines of the plug-in, to standard error: 0 none, 1 errors, 4 all")
        ->check(CLI::Range(0, 4));
    command.add_option("--plugin", options.plugin, "The plug-in")->capture_default_str();
    CLI::Option *socket = command.add_option(
        "--socket", options.socket, "Socket of an AAA service that runs alone (aaanc service)");
    command.add_option("--receive-timeout", seconds, "Seconds that an answer may take")
        ->check(CLI::Range(0.001, 86400.0))
        ->check(refuseNan)
        ->capture_default_str();
    // Another process is told by its own options.
    addMisbehaviour(command, options.misbehaviours)->excludes(socket);
    addOutputOptions(command, options.output);
}

void addYang(CLI::App &command, std::filesystem::path &yang)
{
    command.add_option("--yang", yang, "Directory of orvek-aaa.yang")->capture_default_str();
}

CLI::App *addApply(CLI::App &app, aaanc::ApplyOptions &options, double &seconds)
{
    CLI::App *apply = app.add_subcommand(
        "apply", "Commit edits to a datastore that the plug-in is subscribed to, and show what it "
                 "asks of the AAA service");
    apply->add_option("EDIT", options.edits,
                      "Files of edits (XML or JSON, - for standard input), committed one by one");
    apply->add_option("--startup", options.startup, "File of the configuration at start-up");
    apply->add_flag("--enabled,!--no-enabled", options.enabled,
                    "Tell the plug-in of the start-up configuration (the default), or do not");
    apply->add_option("--record", options.record,
                      "Write what is delivered into this file, for aaanc replay; shared keys are "
                      "in it");
    addYang(*apply, options.yang);
    addRunOptions(*apply, options, seconds);
    addExamples(*apply,
                "  aaanc apply --startup switch.xml                what a start-up asks for\n"
                "  aaanc apply --startup switch.xml edit.xml       ... and then an edit\n"
                "  aaanc apply --json --hex edit.json              every byte, for a tool\n"
                "  aaanc apply --misbehave 'request 2: refuse 43' edit.xml\n");
    return apply;
}

CLI::App *addReplay(CLI::App &app, aaanc::ReplayOptions &options, double &seconds)
{
    CLI::App *replay = app.add_subcommand(
        "replay", "Deliver recorded changes to the plug-in, without a datastore, and show what it "
                  "asks of the AAA service");
    replay
        ->add_option("TRACE", options.traces,
                     "Recordings (docs/trace-format.md, - for standard input), one after another")
        ->required();
    addYang(*replay, options.yang);
    addRunOptions(*replay, options, seconds);
    addExamples(*replay,
                "  aaanc replay device.txt                 what a device was told, at the desk\n"
                "  aaanc replay --json --hex device.txt    the same with every byte, for a tool\n"
                "  aaanc apply --record run.txt edit.xml   record, ...\n"
                "  aaanc replay --log-level 4 run.txt      ... and replay with all log lines\n");
    return replay;
}

CLI::App *addDecode(CLI::App &app, aaanc::DecodeOptions &options)
{
    CLI::App *decode = app.add_subcommand(
        "decode", "Show a hex dump of a request's parameter block, or of its payload, by name");
    decode
        ->add_option("FILE", options.file,
                     "Dump (- for standard input): hex digits, xxd, hexdump -C, or aaanc --hex")
        ->required();
    decode->add_option("--type", options.type, "The dump is a payload of this message type alone");
    decode
        ->add_option_function<std::string>(
            "--order",
            [&options](const std::string &name) {
                if (name != "auto") {
                    options.order = name == "big" ? std::endian::big : std::endian::little;
                }
            },
            "Byte order; auto takes the one that the header makes sense in, and big for a payload")
        ->check(CLI::IsMember({"big", "little", "auto"}))
        ->default_str("auto");
    addOutputOptions(*decode, options.output);
    decode->footer("The exit code is 0 when all is as it should be, 1 when something is not, 2 for "
                   "what is no dump.\n\n"
                   "Examples:\n"
                   "  xxd request.bin | aaanc decode -\n"
                   "  aaanc decode --show-keys request.hex\n"
                   "  echo 0000003c | aaanc decode --type 5 --order big -");
    return decode;
}

void addService(CLI::App &app, aaanc::ServiceOptions &options)
{
    CLI::App *service = app.add_subcommand(
        "service", "Run the AAA service alone; what it holds is shown when a signal ends it");
    service->add_option("--socket", options.socket, "Where to listen")->required();
    addMisbehaviour(*service, options.misbehaviours);
    addOutputOptions(*service, options.output);
    addExamples(*service, "  aaanc service --socket aaa.sock             in one terminal, ...\n"
                          "  aaanc apply --socket aaa.sock edit.xml      ... and in another\n");
}

std::chrono::milliseconds milliseconds(double seconds)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::duration<double>(seconds));
}

int run(int argc, char **argv)
{
    CLI::App app("Runs the AAA configuration plug-in of a switch off the device.", "aaanc");
    app.require_subcommand(1);
    app.set_version_flag("--version", "aaanc " AAANC_VERSION);
    app.failure_message([](const CLI::App *root, const CLI::Error &error) {
        const auto commands = root->get_subcommands();
        return fmt::format("{}; see aaanc {}--help", error.what(),
                           commands.empty() ? "" : commands.front()->get_name() + " ");
    });
    app.footer("Examples:\n"
               "  aaanc apply --startup switch.xml edit.xml   what an edit of a switch asks for\n"
               "  aaanc replay device.txt                     what a device was told, at the desk\n"
               "  aaanc service --socket aaa.sock             the AAA service alone\n"
               "  aaanc COMMAND --help                        the options of a command, examples");

    aaanc::ApplyOptions apply_options;
    apply_options.plugin = aaanc::defaultPlugin();
    apply_options.yang = aaanc::defaultYang();
    double seconds = 5;
    const CLI::App *apply = addApply(app, apply_options, seconds);
    aaanc::ReplayOptions replay_options;
    replay_options.plugin = apply_options.plugin;
    replay_options.yang = apply_options.yang;
    const CLI::App *replay = addReplay(app, replay_options, seconds);

    aaanc::DecodeOptions decode_options;
    const CLI::App *decode = addDecode(app, decode_options);

    aaanc::ServiceOptions service_options;
    addService(app, service_options);

    // CLI11 would only say that a command is missing.
    const auto is_first = [=](const CLI::App *command) { return command->get_name() == argv[1]; };
    if (argc > 1 && argv[1][0] != '-' &&
        std::ranges::none_of(app.get_subcommands(nullptr), is_first)) {
        aaanc::tellError(
            fmt::format("unknown command \"{}\"; see aaanc --help", aaanc::printable(argv[1])));
        return kBadInput;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        std::ostringstream help;
        std::ostringstream failure;
        if (app.exit(error, help, failure) != 0) {
            aaanc::tellError(failure.str());
            return kBadInput;
        }
        aaanc::writeOutput(stdout, help.str());
        return 0;
    }

    if (*decode) {
        return aaanc::decode(decode_options);
    }
    aaanc::TerminationGuard guard;
    if (*apply) {
        apply_options.time_limit = milliseconds(seconds);
        return aaanc::apply(apply_options, guard);
    }
    if (*replay) {
        replay_options.time_limit = milliseconds(seconds);
        return aaanc::replay(replay_options, guard);
    }
    return aaanc::serveAlone(service_options, guard);
}

} // namespace

int main(int argc, char **argv)
{
    try {
        aaanc::holdClosedStreams();
        return aaanc::endOutput(run(argc, argv));
    } catch (const std::exception &error) {
        aaanc::tellError(error.what());
        return kBadInput;
    }
}
