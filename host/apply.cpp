#include "apply.hpp"

#include <vector>

#include <fmt/format.h>

#include "changes.hpp"
#include "delivery.hpp"
#include "document.hpp"
#include "edit.hpp"
#include "input_error.hpp"
#include "reporter.hpp"

namespace aaanc
{

namespace
{

// All that is going to be committed, checked before anything is told.
struct Plan {
    Schema schema;
    std::vector<Document> documents; // the start-up configuration, then the edits
    std::vector<DataTree> states;    // what each makes of the one before; first, of nothing
};

Plan makePlan(const ApplyOptions &options)
{
    Plan plan{Schema(options.yang), {}, {}};
    if (options.startup) {
        plan.documents.push_back(
            readDocument(plan.schema, *options.startup, DocumentKind::Startup));
    } else {
        plan.documents.emplace_back();
    }
    for (const std::filesystem::path &edit : options.edits) {
        plan.documents.push_back(readDocument(plan.schema, edit, DocumentKind::Edit));
    }
    const DataTree nothing;
    for (const Document &document : plan.documents) {
        const DataTree &before = plan.states.empty() ? nothing : plan.states.back();
        plan.states.push_back(applyEdit(plan.schema, before, document));
    }
    return plan;
}

// A recording takes the place of a file that is there, but not of an input.
void refuseToReplaceInput(const ApplyOptions &options)
{
    std::vector<std::filesystem::path> inputs = options.edits;
    if (options.startup) {
        inputs.push_back(*options.startup);
    }
    for (const std::filesystem::path &input : inputs) {
        std::error_code not_there;
        if (options.record && std::filesystem::equivalent(*options.record, input, not_there)) {
            throw InputError(options.record->string(), 0, "",
                             "would be replaced by the recording, but is an input");
        }
    }
}

// Tells the plug-in everything. The reason if it ends early, else empty.
std::string tell(const ApplyOptions &options, const Plan &plan, Delivery &delivery,
                 Reporter &reporter)
{
    const std::vector<Change> configured = changesBetween(DataTree(), plan.states.front());
    reporter.stageBegins({StageKind::Startup, plan.documents.front().file, configured.size()});
    if (options.enabled) {
        delivery.enable(configured);
    }
    for (std::size_t i = 1; i < plan.states.size(); ++i) {
        const DataTree &before = plan.states[i - 1];
        const DataTree &after = plan.states[i];
        const std::vector<Change> changes = changesBetween(before, after);
        reporter.stageBegins({StageKind::Edit, plan.documents[i].file, changes.size()});
        if (!delivery.commit(changes, [&] { return changesBetween(after, before); })) {
            // Later edits were checked against the data that it would have made.
            return fmt::format("{} was refused; no further edit is committed.",
                               plan.documents[i].file);
        }
    }
    return {};
}

} // namespace

int apply(const ApplyOptions &options, TerminationGuard &guard)
{
    refuseToReplaceInput(options);
    const Plan plan = makePlan(options);
    return runPlugin(options, guard, [&](Delivery &delivery, Reporter &reporter) {
        return tell(options, plan, delivery, reporter);
    });
}

} // namespace aaanc
