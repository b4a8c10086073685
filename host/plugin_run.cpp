#include "plugin_run.hpp"

#include <memory>
#include <thread>

#include <fmt/format.h>

#include "aaa_service.hpp"
#include "plugin.hpp"

namespace aaanc
{

namespace
{

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

std::string run(const RunOptions &options, Reporter &reporter, const Telling &tell)
{
    Plugin plugin(options.plugin);
    Delivery delivery(&reporter);
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
    if (!options.socket) {
        service.emplace(guard);
    }
    const std::unique_ptr<RecordWriter> writer = makeWriter(options.output, stdout);
    Reporter reporter(*writer);
    const CmfEndpoint endpoint{options.socket ? *options.socket : service->path(),
                               options.time_limit, &reporter};
    setCmfEndpoint(&endpoint);
    const std::string ended_early = run(options, reporter, tell);
    setCmfEndpoint(nullptr);
    if (!ended_early.empty()) {
        writer->stopped(ended_early);
    }
    writer->summary(reporter.summary());
    return ended_early.empty() && reporter.summary().failed_callbacks == 0 ? 0 : 1;
}

} // namespace aaanc
