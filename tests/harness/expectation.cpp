#include "payload.hpp"
#include "scenario_file.hpp"

#include <algorithm>
#include <sstream>

namespace aaanc::test
{

namespace
{

using Findings = std::vector<std::string>;

bool startsWith(const std::string &line, const char *start)
{
    return line.rfind(start, 0) == 0;
}

Trace linesStarting(const Trace &trace, const char *start)
{
    Trace lines;
    std::copy_if(trace.begin(), trace.end(), std::back_inserter(lines),
                 [&](const std::string &line) { return startsWith(line, start); });
    return lines;
}

std::string lineAt(const Trace &lines, std::size_t index)
{
    return index < lines.size() ? lines[index] : "nothing";
}

// Names the first line in which two lists differ.
void compareLists(Findings &findings, const char *what, const Trace &expected, const Trace &actual)
{
    for (std::size_t at = 0; at < std::max(expected.size(), actual.size()); ++at) {
        if (lineAt(expected, at) == lineAt(actual, at))
            continue;
        findings.push_back(std::string(what) + ' ' + std::to_string(at + 1) +
                           " differs\n      got      " + lineAt(actual, at) + "\n      expected " +
                           lineAt(expected, at));
        return;
    }
}

// A request as it was put to the service.
struct SentRequest {
    std::string object;
    std::uint32_t kind = 0;
    std::size_t length = 0;
    std::string block;
};

std::vector<SentRequest> sentRequests(const Trace &trace)
{
    std::vector<SentRequest> sent;
    std::string object;
    for (const std::string &line : trace) {
        std::istringstream words(line);
        std::string word;
        words >> word;
        if (word == "cmf-object")
            object = line.substr(word.size() + 1, line.find(" -> ") - word.size() - 1);
        if (word != "cmf-encode")
            continue;
        SentRequest request;
        std::string hex;
        words >> request.kind >> request.length >> hex;
        request.object = object;
        for (std::size_t at = 0; at + 1 < hex.size(); at += 2)
            request.block += static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16));
        sent.push_back(std::move(request));
    }
    return sent;
}

std::string describe(const RequestHeader &header)
{
    return std::to_string(header.message_type) +
           (header.do_flag == 1   ? " set"
            : header.do_flag == 0 ? " undo"
                                  : " flag " + std::to_string(header.do_flag)) +
           " length " + std::to_string(header.length);
}

void compareRequest(Findings &findings, const std::string &name, const ExpectedRequest &expected,
                    const SentRequest &sent)
{
    if (sent.kind != 0 || sent.block.size() < kHeaderSize) {
        findings.push_back(name + " is no parameter of kind 0 with a header");
        return;
    }
    const RequestHeader wanted = readHeader(expected.block);
    const RequestHeader header = readHeader(sent.block);
    const std::string object =
        std::to_string(header.message_type) + (header.do_flag != 0 ? " 3" : " 4") + " 0";
    if (sent.object != object)
        findings.push_back(name + " has the object record " + sent.object + ", expected " + object);
    if (describe(header) != describe(wanted) || sent.block.size() != expected.block.size()) {
        findings.push_back(name + " is " + describe(header) + " in " +
                           std::to_string(sent.block.size()) + " bytes, expected " +
                           describe(wanted) + " in " + std::to_string(expected.block.size()));
        return;
    }
    if (header.length == 0)
        return;
    const PayloadRecord &record = *payloadRecord(expected.message_type);
    for (const std::string &difference :
         payloadDifferences(record, std::string_view(expected.block).substr(kHeaderSize),
                            std::string_view(sent.block).substr(kHeaderSize)))
        findings.push_back(name + ": " + difference);
}

void compareRequests(Findings &findings, const ScenarioCase &expected, const Trace &trace)
{
    const std::vector<SentRequest> sent = sentRequests(trace);
    if (sent.size() != expected.requests.size())
        findings.push_back("requests: " + std::to_string(sent.size()) + ", expected " +
                           std::to_string(expected.requests.size()));
    for (std::size_t at = 0; at < std::min(sent.size(), expected.requests.size()); ++at)
        compareRequest(findings,
                       "request " + std::to_string(at + 1) + " (line " +
                           std::to_string(expected.requests[at].line) + ')',
                       expected.requests[at], sent[at]);
}

void compareLogs(Findings &findings, const ScenarioCase &expected, const Trace &trace)
{
    if (expected.logs)
        compareLists(findings, "log line", *expected.logs, linesStarting(trace, "log "));
    else
        compareLists(findings, "error line", expected.errors, linesStarting(trace, "log ERR "));
    auto from = trace.begin();
    for (const std::string &line : expected.debugs) {
        from = std::find(from, trace.end(), line);
        if (from == trace.end()) {
            findings.push_back("missing, or out of order: " + line);
            return;
        }
        ++from;
    }
}

// Every change's values are freed, the old one first, before the next is taken.
void checkValuesFreed(Findings &findings, const Scenario &scenario, const Trace &trace)
{
    Trace wanted;
    Trace freed;
    std::size_t change = 0;
    for (const std::string &line : trace) {
        if (startsWith(line, "free ")) {
            freed.push_back(line);
        } else if (startsWith(line, "next ")) {
            compareLists(findings, "free", wanted, freed);
            wanted.clear();
            freed.clear();
            if (!startsWith(line, "next -> 0 ") || change == scenario.changes.size())
                continue;
            const Change &taken = scenario.changes[change++];
            const std::string number = std::to_string(change);
            wanted = {taken.old_value ? "free old#" + number : "free null",
                      taken.new_value ? "free new#" + number : "free null"};
        }
    }
    compareLists(findings, "free", wanted, freed);
}

void checkIteratorFreed(Findings &findings, const ScenarioCase &expected, const Trace &trace)
{
    const Trace opened = linesStarting(trace, "changes-iter ");
    const bool is_open = opened.size() == 1 && expected.scenario.changes_iter == 0;
    const std::size_t wanted = is_open && !expected.iterator_stays_open ? 1 : 0;
    const std::size_t freed = linesStarting(trace, "free-iter").size();
    if (freed != wanted)
        findings.push_back("the iterator is freed " + std::to_string(freed) + " times, expected " +
                           std::to_string(wanted));
    else if (wanted == 1 && trace[trace.size() - 2] != "free-iter")
        findings.push_back("the last call is not free-iter but " + trace[trace.size() - 2]);
    if (expected.iterator_stays_open && !is_open)
        findings.push_back("no iterator that could stay open");
}

// The last of the calls that a failure is planned for; 0 when there is none.
std::size_t last(const std::set<std::size_t> &planned)
{
    return planned.empty() ? 0 : *planned.rbegin();
}

template <typename T> std::size_t last(const std::map<std::size_t, T> &planned)
{
    return planned.empty() ? 0 : planned.rbegin()->first;
}

// The calls of each exchange.
std::vector<Trace> exchangesOf(const Trace &trace)
{
    std::vector<Trace> exchanges;
    for (const std::string &line : trace) {
        if (startsWith(line, "cmf-init "))
            exchanges.emplace_back();
        if (startsWith(line, "cmf-") && !exchanges.empty())
            exchanges.back().push_back(line);
    }
    return exchanges;
}

void checkExchangesHappen(Findings &findings, const Scenario &scenario, const Trace &trace)
{
    struct Step {
        const char *name;
        const char *call;
        bool is_planned;
    };
    const std::vector<Trace> exchanges = exchangesOf(trace);
    for (const auto &[number, planned] : scenario.exchanges) {
        const std::string exchange = "exchange " + std::to_string(number);
        if (number > exchanges.size()) {
            findings.push_back(exchange + " never happened");
            continue;
        }
        const Step steps[] = {{"object", "cmf-object ", planned.object_set != 0},
                              {"encode", "cmf-encode ", planned.encode != 0},
                              {"send", "cmf-send ", planned.send != 0},
                              {"receive", "cmf-receive ", planned.receive != 0},
                              {"decode", "cmf-decode ", planned.decode != 0},
                              {"reply", "cmf-decode -> 0", planned.reply != Reply()}};
        for (const Step &step : steps)
            if (step.is_planned && linesStarting(exchanges[number - 1], step.call).empty())
                findings.push_back(exchange + ' ' + step.name + " never happened");
    }
}

// A failure that is planned for a call that is never made tests nothing.
void checkPlannedHappens(Findings &findings, const Scenario &scenario, const Trace &trace)
{
    const auto calls = [&](const char *start) { return linesStarting(trace, start).size(); };
    const auto require = [&](bool happened, const std::string &what) {
        if (!happened)
            findings.push_back(what + " never happened");
    };
    const auto requireCall = [&](const char *what, std::size_t planned, std::size_t made) {
        require(planned <= made, std::string(what) + " call " + std::to_string(planned));
    };
    requireCall("next", last(scenario.next_result), calls("next "));
    requireCall("node-name", last(scenario.node_name_null), calls("node-name "));
    requireCall("key", last(scenario.key_null), calls("key "));
    requireCall("unhex", last(scenario.unhex_result), calls("unhex "));
    requireCall("log-level from", last(scenario.log_level_from_call), trace.size() - 1);
    require(scenario.changes_iter == 0 || calls("changes-iter ") != 0, "changes-iter");
    require(!scenario.strerror_null || calls("strerror ") != 0, "strerror");
    require(scenario.end_of_changes == Scenario().end_of_changes ||
                std::count(trace.begin(), trace.end(),
                           "next -> " + std::to_string(scenario.end_of_changes)) != 0,
            "end-of-changes");
    checkExchangesHappen(findings, scenario, trace);
}

// The trace as `calls` gives it: no result, and * for the bytes of a request,
// which differ with the byte order.
Trace comparableCalls(const Trace &trace)
{
    Trace calls(trace.begin(), trace.end() - 1);
    for (std::string &line : calls) {
        if (!startsWith(line, "cmf-encode "))
            continue;
        const std::size_t length_end = line.find(' ', line.find(' ', sizeof "cmf-encode") + 1);
        line = line.substr(0, length_end) + " *" + line.substr(line.find(" -> "));
    }
    return calls;
}

} // namespace

std::vector<std::string> mismatches(const ScenarioCase &expected, const Trace &trace)
{
    Findings findings = linesStarting(trace, "WRONG");
    const std::string result = "result " + std::to_string(expected.result);
    if (trace.empty() || trace.back() != result) {
        findings.push_back("got " + (trace.empty() ? "nothing" : trace.back()) + ", expected " +
                           result);
        if (trace.empty())
            return findings;
    }
    compareRequests(findings, expected, trace);
    compareLogs(findings, expected, trace);
    checkValuesFreed(findings, expected.scenario, trace);
    checkIteratorFreed(findings, expected, trace);
    checkPlannedHappens(findings, expected.scenario, trace);
    if (expected.calls)
        compareLists(findings, "call", *expected.calls, comparableCalls(trace));
    return findings;
}

} // namespace aaanc::test
