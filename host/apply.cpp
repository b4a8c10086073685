#include "apply.hpp"

#include <memory>
#include <thread>

#include <fmt/format.h>

#include "aaa_service.hpp"
#include "changes.hpp"
#include "delivery.hpp"
#include "document.hpp"
#include "edit.hpp"
#include "plugin.hpp"
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

// The AAA service on a thread of this process, still behind a socket.
class InProcessService
{
public:
    explicit InProcessService(TerminationGuard &guard)
        : directory_(guard), path_(directory_.path() / "aaa.sock"),
          socket_(path_, [this](const CmfRequest &request) { return handler_.answer(request); }),
          thread_([this] { socket_.serve(); })
    {
    }
    ~InProcessService()
    {
        socket_.stop();
        thread_.join();
    }
    InProcessService(const InProcessService &) = delete;
    InProcessService &operator=(const InProcessService &) = delete;

    [[nodiscard]] const std::string &path() const
    {
        return path_;
    }

private:
    TemporaryDirectory directory_;
    std::string path_;
    RequestHandler handler_;
    ServiceSocket socket_;
    std::thread thread_; // started last
};

// Tells the plug-in everything. The reason if it ends early, else empty.
std::string run(const ApplyOptions &options, const Plan &plan, Reporter &reporter)
{
    Plugin plugin(options.plugin);
    Delivery delivery(&reporter);
    if (const int result = plugin.initialise(delivery.session()); result != 0) {
        return fmt::format("The plug-in could not be initialised: sr_plugin_init_cb returned {}.",
                           result);
    }

    const std::vector<Change> configured = changesBetween(DataTree(), plan.states.front());
    reporter.stageBegins({StageKind::Startup, plan.documents.front().file, configured.size()});
    if (options.enabled) {
        delivery.enable(configured);
    }

    std::string ended_early;
    for (std::size_t i = 1; i < plan.states.size() && ended_early.empty(); ++i) {
        const DataTree &before = plan.states[i - 1];
        const DataTree &after = plan.states[i];
        const std::vector<Change> changes = changesBetween(before, after);
        reporter.stageBegins({StageKind::Edit, plan.documents[i].file, changes.size()});
        if (!delivery.commit(changes, [&] { return changesBetween(after, before); })) {
            // Later edits were checked against the data that it would have made.
            ended_early = fmt::format("{} was refused; no further edit is committed.",
                                      plan.documents[i].file);
        }
    }
    plugin.cleanUp(delivery.session());
    return ended_early;
}

} // namespace

int apply(const ApplyOptions &options, TerminationGuard &guard)
{
    const Plan plan = makePlan(options);

    std::optional<InProcessService> service;
    if (!options.socket) {
        service.emplace(guard);
    }
    const std::unique_ptr<RecordWriter> writer = makeWriter(options.output, stdout);
    Reporter reporter(*writer);
    const CmfEndpoint endpoint{options.socket ? *options.socket : service->path(),
                               options.time_limit, &reporter};
    setCmfEndpoint(&endpoint);
    const std::string ended_early = run(options, plan, reporter);
    setCmfEndpoint(nullptr);
    if (!ended_early.empty()) {
        writer->stopped(ended_early);
    }
    writer->summary(reporter.summary());
    return ended_early.empty() && reporter.summary().failed_callbacks == 0 ? 0 : 1;
}

} // namespace aaanc
