// Behaviours of the log, the exchange and the walk, which all handlers share.
#include "coverage.hpp"

#include <algorithm>

namespace aaanc::test::model
{
namespace
{

bool oneLevel(const Story &s, int low, int high)
{
    const Scenario &scenario = s.scenario;
    return scenario.log_level_from_call.empty() && scenario.log_level >= low &&
           scenario.log_level <= high;
}

// What the first request to be begun was answered.
const Reply *firstReply(const Story &s)
{
    const auto found = s.scenario.exchanges.find(1);
    const bool answered = found != s.scenario.exchanges.end() && s.requests.size() == s.contexts &&
                          !s.requests.empty() && found->second.send == 0 &&
                          found->second.encode == 0 && found->second.receive == 0 &&
                          found->second.decode == 0;
    return answered ? &found->second.reply : nullptr;
}

bool refused(const Story &s)
{
    return s.result != 0 && s.logged("Cmf recv decode error code=<");
}

bool allCreated(const Story &s)
{
    return std::all_of(s.taken.begin(), s.taken.end(),
                       [](const Taken &taken) { return taken.oper == 0; });
}

bool endedAtMoved(const Story &s)
{
    return !s.taken.empty() && s.taken.back().oper == 3 && s.result == 8;
}

bool addressChecked(const Story &s, const char *address, bool acceptable)
{
    const auto &checked = s.facts.addresses_checked;
    return std::find(checked.begin(), checked.end(), std::pair(std::string(address), acceptable)) !=
           checked.end();
}

bool isGlobal(const Story &s)
{
    return s.scenario.callback == "aaaNcGlobalConfChanges";
}

} // namespace

Chapter logChapter()
{
    return {
        "",
        {
            {"log: nothing at level 0, not even of a failure",
             [](const Story &s) {
                 return oneLevel(s, 0, 0) && s.result != 0 && s.errors.empty() && s.debugs.empty();
             }},
            {"log: only errors at levels 1 to 3",
             [](const Story &s) {
                 return oneLevel(s, 1, 3) && !s.errors.empty() && s.debugs.empty();
             }},
            {"log: errors and debug lines at level 4",
             [](const Story &s) {
                 return oneLevel(s, 4, 4) && !s.errors.empty() && !s.debugs.empty();
             }},
            {"log: both above level 4",
             [](const Story &s) {
                 return oneLevel(s, 5, 9) && !s.errors.empty() && !s.debugs.empty();
             }},
            {"log: debug lines begin in the middle of a walk",
             [](const Story &s) {
                 return s.scenario.log_level < 4 && s.logged("xpath") && !s.debugs.empty();
             }},
            {"log: debug lines end in the middle of a walk",
             [](const Story &s) {
                 return s.scenario.log_level >= 4 && !s.requests.empty() && !s.logged("Set param");
             }},
        }};
}

Chapter exchangeChapter()
{
    return {"",
            {
                {"exchange: a reply of another length than it says counts as accepted",
                 [](const Story &s) {
                     return s.result == 0 && s.logged("Cmf data len is not the same");
                 }},
                {"exchange: a reply of 8 bytes and length 0 gives its result",
                 [](const Story &s) {
                     const Reply *reply = firstReply(s);
                     return reply != nullptr && reply->result != 0 && reply->length_field == 0 &&
                            reply->decoded_length == 8 && s.requests.size() == 1 && refused(s);
                 }},
                {"exchange: a longer reply that says so gives its result",
                 [](const Story &s) {
                     const Reply *reply = firstReply(s);
                     return reply != nullptr && reply->result != 0 && reply->decoded_length > 8 &&
                            reply->decoded_length <= 1024 && s.requests.size() == 1 && refused(s);
                 }},
                {"exchange: a reply longer than the buffer",
                 [](const Story &s) {
                     const Reply *reply = firstReply(s);
                     return reply != nullptr && reply->decoded_length > 1024 && !reply->null_data;
                 }},
                {"exchange: a reply shorter than its header",
                 [](const Story &s) {
                     const Reply *reply = firstReply(s);
                     return reply != nullptr && reply->decoded_length < 8;
                 }},
                {"exchange: a reply without data",
                 [](const Story &s) {
                     const Reply *reply = firstReply(s);
                     return reply != nullptr && reply->null_data;
                 }},
                {"exchange: no context",
                 [](const Story &s) { return s.logged("Aaa nc cmf init client ctx failed"); }},
                {"exchange: the object is refused",
                 [](const Story &s) { return s.logged("Aaa nc cmf set client ctx obj failed"); }},
                {"exchange: the parameter is refused",
                 [](const Story &s) { return s.logged("Cmf client encode param failed"); }},
                {"exchange: memory is low",
                 [](const Story &s) { return s.logged("system memory is low"); }},
                {"exchange: the request cannot be sent",
                 [](const Story &s) { return s.logged("Cmf client send req failed"); }},
                {"exchange: nothing is received",
                 [](const Story &s) { return s.logged("Cmf client resp failed"); }},
                {"exchange: the reply cannot be decoded",
                 [](const Story &s) { return s.logged("Cmf recv decode param failed"); }},
                {"exchange: a later request fails",
                 [](const Story &s) { return s.contexts > 1 && refused(s); }},
            }};
}

Chapter walkChapter()
{
    return {"",
            {
                {"walk: verify returns 0 and takes no change",
                 [](const Story &s) {
                     return s.scenario.event == 0 && !s.scenario.changes.empty() && s.result == 0 &&
                            s.taken.empty();
                 }},
                {"walk: abort returns 0 and takes no change",
                 [](const Story &s) {
                     return s.scenario.event == 2 && !s.scenario.changes.empty() && s.result == 0 &&
                            s.taken.empty();
                 }},
                {"walk: when enabled, what is created is set",
                 [](const Story &s) {
                     return s.scenario.event == 3 && s.result == 0 && allCreated(s) &&
                            !s.requests.empty() &&
                            std::all_of(s.requests.begin(), s.requests.end(),
                                        [](const Sent &request) { return request.do_flag == 1; });
                 }},
                {"walk: a refused request leaves the rest unsent",
                 [](const Story &s) { return s.endedEarly() && refused(s); }},
                {"walk: a moved change is skipped in the global subtree",
                 [](const Story &s) {
                     return isGlobal(s) && s.result == 0 &&
                            s.logged("Choose value for oper 3 failed");
                 }},
                {"walk: a moved change ends it with 8 elsewhere",
                 [](const Story &s) { return !isGlobal(s) && endedAtMoved(s); }},
                {"walk: a value missing for its operation is treated as moved",
                 [](const Story &s) {
                     return s.logged("Choose value for oper 0 failed") ||
                            s.logged("Choose value for oper 2 failed");
                 }},
                {"walk: an operation out of range",
                 [](const Story &s) { return s.logged("Choose value for oper -1 failed"); }},
                {"walk: a failure of the platform has no text",
                 [](const Story &s) { return s.logged(" failed: (null)."); }},
                {"walk: the iterator fails",
                 [](const Story &s) { return s.logged("Get changes iter for xpath "); }},
                {"walk: the next change fails after a request",
                 [](const Story &s) {
                     return s.contexts > 0 && s.logged("Get next change for xpath ");
                 }},
                {"walk: no node name",
                 [](const Story &s) {
                     return (s.result == 5 && s.logged("Get last node name in xpath ")) ||
                            (s.result == 7 && s.logged("AAA get node failed, path: "));
                 }},
                {"walk: no xpath",
                 [](const Story &s) {
                     return s.logged("in xpath (null) failed") || s.logged("path: (null).");
                 }},
                {"walk: no change at all",
                 [](const Story &s) {
                     return s.scenario.changes.empty() && s.iterator_freed && s.result == 0;
                 }},
                {"walk: a missing key ends it with 5",
                 [](const Story &s) { return s.key_missing && s.result == 5; }},
                {"walk: a missing key's line shows the xpath cut",
                 [](const Story &s) {
                     const std::size_t line = s.errors.find("Get value for key ");
                     return line != std::string::npos && s.scenario.cuts_xpath &&
                            s.errors.find("'] failed.", line) == std::string::npos &&
                            s.errors.find("[", line) != std::string::npos;
                 }},
            }};
}

Chapter addressChapter()
{
    return {
        "Ipv6",
        {
            {"address: :: is refused",
             [](const Story &s) { return addressChecked(s, "::", false); }},
            {"address: ::1 is refused",
             [](const Story &s) { return addressChecked(s, "::1", false); }},
            {"address: ::2 passes", [](const Story &s) { return addressChecked(s, "::2", true); }},
            {"address: ::ffff:10.0.0.1 passes",
             [](const Story &s) { return addressChecked(s, "::ffff:10.0.0.1", true); }},
            {"address: fe80::1 is refused",
             [](const Story &s) { return addressChecked(s, "fe80::1", false); }},
            {"address: febf::1 is refused",
             [](const Story &s) { return addressChecked(s, "febf::1", false); }},
            {"address: fe7f::1 passes",
             [](const Story &s) { return addressChecked(s, "fe7f::1", true); }},
            {"address: fec0::1 is refused",
             [](const Story &s) { return addressChecked(s, "fec0::1", false); }},
            {"address: ff02::1 is refused",
             [](const Story &s) { return addressChecked(s, "ff02::1", false); }},
            {"address: a global one passes",
             [](const Story &s) { return addressChecked(s, "2001:db8::1", true); }},
            {"address: a dotted one is refused",
             [](const Story &s) { return addressChecked(s, "10.0.0.1", false); }},
            {"address: an empty one is refused",
             [](const Story &s) { return addressChecked(s, "", false); }},
        }};
}

} // namespace aaanc::test::model
