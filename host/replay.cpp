#include "replay.hpp"

#include "input_error.hpp"
#include "input_file.hpp"
#include "trace.hpp"

namespace aaanc
{

namespace
{

// What a plug-in is subscribed to is known only when it has been initialised.
void checkSubscribed(const std::vector<Trace> &traces, const Delivery &delivery)
{
    for (const Trace &trace : traces) {
        for (const RecordedCallback &callback : trace.callbacks) {
            if (!delivery.isSubscribed(callback.subtree)) {
                throw InputError(trace.file, callback.line, callback.subtree,
                                 "the plug-in is not subscribed to this");
            }
        }
    }
}

std::size_t changeCount(const Trace &trace)
{
    std::size_t count = 0;
    for (const RecordedCallback &callback : trace.callbacks) {
        count += callback.changes.size();
    }
    return count;
}

} // namespace

int replay(const ReplayOptions &options, TerminationGuard &guard)
{
    refuseStandardInputTwice(options.traces);
    const Schema schema(options.yang);
    std::vector<Trace> traces;
    for (const std::filesystem::path &file : options.traces) {
        traces.push_back(readTrace(schema, inputName(file), readInput(file, kMaxRecordingSize)));
    }
    return runPlugin(options, guard, [&](Delivery &delivery, Reporter &reporter) {
        checkSubscribed(traces, delivery);
        for (const Trace &trace : traces) {
            reporter.stageBegins({StageKind::Recording, trace.file, changeCount(trace)});
            for (const RecordedCallback &callback : trace.callbacks) {
                delivery.notify(callback.subtree, callback.event, refsTo(callback.changes));
            }
        }
        return std::string();
    });
}

} // namespace aaanc
