#include "plugin_run.hpp"

#include <memory>
#include <thread>

#include <fmt/format.h>

#include "aaa_service.hpp"
#include "plugin.hpp"
#include "sysrepo.h"
#include "trace_recorder.hpp"

namespace aaanc
{

namespace
{

// The AAA service on a thread of this process, still behind a socket.
class InProcessService
{
public:
    InProcessService(TerminationGuard &guard, const std::vector<Misbehaviour> &misbehaviours)
        : directory_(guard), path_(directory_.path() / "aaa.sock"), handler_(misbehaviours),
          socket_(
              path_, [this](const CmfRequest &request) { return handler_.treat(request); },
              [this] { return handler_.closesNext() != nullptr; })
    {
        if (handler_.isAway()) {
            socket_.leave();
        }
        thread_ = std::thread([this] { socket_.serve(); });
    }
    ~InProcessService()
    {
        end();
    }
    InProcessService(const InProcessService &) = delete;
    InProcessService &operator=(const InProcessService &) = delete;

    [[nodiscard]] const std::string &path() const
    {
        return path_;
    }

    // Ends it; what it holds then.
    const RunningState &end()
    {
        if (thread_.joinable()) {
            socket_.stop();
            thread_.join();
        }
        return handler_.state();
    }

private:
    TemporaryDirectory directory_;
    std::string path_;
    RequestHandler handler_;
    ServiceSocket socket_;
    std::thread thread_; // started last
};

// A plug-in that has been initialised is cleaned up, whatever happens meanwhile.
class CleanUp
{
public:
    CleanUp(Plugin &plugin, Delivery &delivery) : plugin_(plugin), delivery_(delivery) {}
    ~CleanUp()
    {
        plugin_.cleanUp(delivery_.session());
    }
    CleanUp(const CleanUp &) = delete;
    CleanUp &operator=(const CleanUp &) = delete;

private:
    Plugin &plugin_;
    Delivery &delivery_;
};

std::string run(const RunOptions &options, DeliveryObserver &observer, Reporter &reporter,
                const Telling &tell)
{
    Plugin plugin(options.plugin);
    Delivery delivery(&observer);
    if (const int result = plugin.initialise(delivery.session()); result != 0) {
        return fmt::format("The plug-in could not be initialised: sr_plugin_init_cb returned {}.",
                           result);
    }
    const CleanUp clean_up(plugin, delivery);
    return tell(delivery, reporter);
}

} // namespace

int runPlugin(const RunOptions &options, TerminationGuard &guard, const Telling &tell)
{
    std::optional<InProcessService> service;
    if (options.socket) {
        checkSocketPath(*options.socket);
    } else {
        service.emplace(guard, options.misbehaviours);
    }
    OutputOptions output = options.output;
    output.log_lines = srp_ll_syslog != 0;
    const std::unique_ptr<RecordWriter> writer = makeWriter(output, stdout);
    Progress progress(!output.log_lines); // log lines tell enough
    Reporter reporter(*writer, &progress);
    std::optional<TraceRecorder> recorder;
    if (options.record) {
        recorder.emplace(*options.record, guard, reporter);
    }
    const CmfEndpoint endpoint{options.socket ? *options.socket : service->path(),
                               options.time_limit, &reporter};
    setCmfEndpoint(&endpoint);
    const std::string ended_early = run(
        options, recorder ? *recorder : static_cast<DeliveryObserver &>(reporter), reporter, tell);
    setCmfEndpoint(nullptr);
    progress.end();
    if (!ended_early.empty()) {
        writer->stopped(ended_early);
    }
    if (service) {
        writer->state(service->end());
    }
    writer->summary(reporter.summary());
    // A plug-in that could not be initialised has been told nothing to keep.
    if (recorder && (ended_early.empty() || reporter.summary().callbacks != 0)) {
        recorder->finish();
    }
    return ended_early.empty() && reporter.summary().failed_callbacks == 0 ? 0 : 1;
}

} // namespace aaanc
