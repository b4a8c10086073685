#include "torture/invariants.hpp"

#include <algorithm>

namespace aaanc::test
{

namespace
{

bool startsWith(const std::string &line, const char *start)
{
    return line.rfind(start, 0) == 0;
}

std::size_t count(const Trace &trace, const char *start)
{
    return static_cast<std::size_t>(
        std::count_if(trace.begin(), trace.end(),
                      [&](const std::string &line) { return startsWith(line, start); }));
}

bool isRequestSent(const std::string &line)
{
    return startsWith(line, "cmf-init");
}

// The method lists leave the iterator open, on purpose, where the groups do not
// pair, and where a request fails that is sent before the changes have ended.
bool iteratorStaysOpen(const Scenario &scenario, const Trace &trace)
{
    if (scenario.callback != "aaaNcDomainAuthenConfChanges" &&
        scenario.callback != "aaaNcDomainAccountConfChanges")
        return false;
    const auto last_next = std::find_if(trace.rbegin(), trace.rend(), [](const std::string &line) {
        return startsWith(line, "next ");
    });
    if (last_next == trace.rend())
        return false;
    const bool within_changes = startsWith(*last_next, "next -> 0 ");
    const bool next_failed = !within_changes && *last_next != "next -> 5";
    if (next_failed)
        return false;
    // Nothing else ends such a walk with 1.
    const bool is_unpaired = trace.back() == "result 1";
    const bool request_failed =
        trace.back() == "result 7" && std::any_of(trace.rbegin(), last_next, isRequestSent);
    return is_unpaired || (within_changes && request_failed);
}

// Frees as they must be, and as they are, between one change and the next.
class Frees
{
public:
    Frees(const Scenario &scenario, std::vector<std::string> &findings)
        : scenario_(scenario), findings_(findings)
    {
    }

    void see(const std::string &line)
    {
        if (startsWith(line, "free "))
            freed_.push_back(line);
        if (startsWith(line, "next ") || startsWith(line, "result "))
            endOfChange();
        if (startsWith(line, "next -> 0 "))
            beginOfChange();
    }

private:
    void beginOfChange()
    {
        const Change &change = scenario_.changes.at(taken_++);
        const std::string number = std::to_string(taken_);
        wanted_ = {change.old_value ? "free old#" + number : "free null",
                   change.new_value ? "free new#" + number : "free null"};
    }

    void endOfChange()
    {
        if (freed_ != wanted_)
            findings_.push_back("change " + std::to_string(taken_) +
                                ": values are not freed, or not once, or not old before new");
        freed_.clear();
        wanted_.clear();
    }

    const Scenario &scenario_;
    std::vector<std::string> &findings_;
    std::size_t taken_ = 0;
    std::vector<std::string> wanted_;
    std::vector<std::string> freed_;
};

} // namespace

std::vector<std::string> brokenInvariants(const Scenario &scenario, const Trace &trace)
{
    std::vector<std::string> findings;
    for (const std::string &line : trace) {
        if (startsWith(line, "WRONG"))
            findings.push_back(line);
    }
    if (count(trace, "cmf-init \"aaa\" 145 1 -> ok") != count(trace, "cmf-close"))
        findings.push_back("a context is not closed once");

    Frees frees(scenario, findings);
    for (const std::string &line : trace)
        frees.see(line);

    const bool opened = count(trace, "changes-iter ") == 1 && scenario.changes_iter == 0;
    const std::size_t wanted = opened && !iteratorStaysOpen(scenario, trace) ? 1 : 0;
    const std::size_t freed = count(trace, "free-iter");
    if (freed != wanted)
        findings.push_back("the iterator is freed " + std::to_string(freed) + " times, expected " +
                           std::to_string(wanted));
    return findings;
}

} // namespace aaanc::test
