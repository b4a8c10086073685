#include "apply.hpp"

#include <algorithm>
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

// A commit, worked out before anything is told.
struct Commit {
    StageRecord stage;
    std::vector<Change> changes;
    std::vector<Change> inverse;
};

// The start-up configuration and the edits, in turn.
std::vector<Commit> plan(const ApplyOptions &options)
{
    const Schema schema(options.yang);
    std::vector<Document> documents;
    if (options.startup) {
        documents.push_back(readDocument(schema, *options.startup, DocumentKind::Startup));
    } else {
        documents.emplace_back();
    }
    for (const std::filesystem::path &edit : options.edits) {
        documents.push_back(readDocument(schema, edit, DocumentKind::Edit));
    }

    std::vector<Commit> commits;
    DataTree before;
    for (const Document &document : documents) {
        DataTree after = applyEdit(schema, before, document);
        std::vector<Change> changes = changesBetween(before, after);
        const std::size_t count = changes.size();
        const StageKind kind = commits.empty() ? StageKind::Startup : StageKind::Edit;
        commits.push_back(
            {{kind, document.file, count}, std::move(changes), changesBetween(after, before)});
        before = std::move(after);
    }
    return commits;
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
        guard.removeAtEnd(path_);
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
std::string run(const ApplyOptions &options, const std::vector<Commit> &commits, Reporter &reporter)
{
    Plugin plugin(options.plugin);
    Delivery delivery(&reporter);
    if (const int result = plugin.initialise(delivery.session()); result != 0) {
        return fmt::format("The plug-in could not be initialised: sr_plugin_init_cb returned {}.",
                           result);
    }
    std::string ended_early;
    for (const Commit &commit : commits) {
        reporter.stageBegins(commit.stage);
        if (commit.stage.kind == StageKind::Startup) {
            if (options.enabled) {
                delivery.enable(commit.changes);
            }
        } else if (!delivery.commit(commit.changes, commit.inverse)) {
            // Later edits were checked against the data that it would have made.
            ended_early =
                fmt::format("{} was refused; no further edit is committed.", commit.stage.file);
            break;
        }
    }
    plugin.cleanUp(delivery.session());
    return ended_early;
}

} // namespace

int apply(const ApplyOptions &options, TerminationGuard &guard)
{
    const std::vector<Commit> commits = plan(options);

    std::optional<InProcessService> service;
    if (!options.socket) {
        service.emplace(guard);
    }
    const std::unique_ptr<RecordWriter> writer = makeWriter(options.output, stdout);
    Reporter reporter(*writer);
    const CmfEndpoint endpoint{options.socket ? *options.socket : service->path(),
                               options.time_limit, &reporter};
    setCmfEndpoint(&endpoint);
    const std::string ended_early = run(options, commits, reporter);
    setCmfEndpoint(nullptr);
    if (!ended_early.empty()) {
        writer->stopped(ended_early);
    }
    writer->summary(reporter.summary());
    return ended_early.empty() && reporter.summary().failed_callbacks == 0 ? 0 : 1;
}

} // namespace aaanc
