#include "apply.hpp"

#include <vector>

#include <fmt/format.h>

#include "changes.hpp"
#include "delivery.hpp"
#include "document.hpp"
#include "edit.hpp"
#include "input_error.hpp"
#include "input_file.hpp"
#include "reporter.hpp"

namespace aaanc
{

namespace
{

// All that is going to be committed, checked before anything is told.
struct Plan {
    Schema schema;
    std::string startup; // name of its file
    DataTree data;       // at start-up
    std::vector<Document> edits;
};

Plan makePlan(const ApplyOptions &options)
{
    Plan plan{Schema(options.yang), {}, {}, {}};
    if (options.startup) {
        const Document startup = readDocument(plan.schema, *options.startup, DocumentKind::Startup);
        plan.startup = startup.file;
        plan.data = applyEdit(plan.schema, plan.data, startup);
    }
    for (const std::filesystem::path &edit : options.edits) {
        plan.edits.push_back(readDocument(plan.schema, edit, DocumentKind::Edit));
    }
    // Not kept: the states of many edits of a large configuration take much memory.
    const DataTree *before = &plan.data;
    DataTree after;
    for (const Document &edit : plan.edits) {
        after = applyEdit(plan.schema, *before, edit);
        before = &after;
    }
    return plan;
}

std::vector<std::filesystem::path> inputsOf(const ApplyOptions &options)
{
    std::vector<std::filesystem::path> inputs = options.edits;
    if (options.startup) {
        inputs.push_back(*options.startup);
    }
    return inputs;
}

// A recording takes the place of a file that is there, but not of one that the run
// is made of.
void refuseToReplaceInput(const ApplyOptions &options)
{
    std::vector<std::filesystem::path> inputs = inputsOf(options);
    inputs.push_back(options.plugin);
    inputs.push_back(options.yang / "orvek-aaa.yang");
    for (const std::filesystem::path &input : inputs) {
        std::error_code not_there;
        if (options.record && std::filesystem::equivalent(*options.record, input, not_there)) {
            throw InputError(options.record->string(), 0, "",
                             "would be replaced by the recording, but is an input");
        }
    }
}

void tellStartup(const ApplyOptions &options, const Plan &plan, Delivery &delivery,
                 Reporter &reporter)
{
    const ChangeSet configured = changesBetween(DataTree(), plan.data);
    reporter.stageBegins({StageKind::Startup, plan.startup, configured.refs.size()});
    if (options.enabled) {
        delivery.enable(configured.refs);
    }
}

// Tells the plug-in everything. The reason if it ends early, else empty.
std::string tell(const ApplyOptions &options, Plan &plan, Delivery &delivery, Reporter &reporter)
{
    tellStartup(options, plan, delivery, reporter);
    DataTree &before = plan.data;
    for (const Document &edit : plan.edits) {
        DataTree after = applyEdit(plan.schema, before, edit);
        const ChangeSet changes = changesBetween(before, after);
        reporter.stageBegins({StageKind::Edit, edit.file, changes.refs.size()});
        if (!delivery.commit(changes.refs, [&] { return changesBetween(after, before); })) {
            // Later edits were checked against the data that it would have made.
            return fmt::format("{} was refused; no further edit is committed.", edit.file);
        }
        before = std::move(after);
    }
    return {};
}

} // namespace

int apply(const ApplyOptions &options, TerminationGuard &guard)
{
    refuseStandardInputTwice(inputsOf(options));
    refuseToReplaceInput(options);
    Plan plan = makePlan(options);
    return runPlugin(options, guard, [&](Delivery &delivery, Reporter &reporter) {
        return tell(options, plan, delivery, reporter);
    });
}

} // namespace aaanc
