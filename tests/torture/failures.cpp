#include "torture/failures.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace aaanc::test
{

namespace
{

// Codes that some handler or step treats in a way of its own, codes that none
// does, and the ends of the range.
constexpr std::array<std::int32_t, 12> kCodes = {
    1,
    3,
    5,
    7,
    8,
    43,
    49,
    52,
    -1,
    256,
    std::numeric_limits<std::int32_t>::min(),
    std::numeric_limits<std::int32_t>::max(),
};

// A result that shows where a reply is taken at its word that should not be.
constexpr std::uint32_t kRefused = 9;

struct NamedReply {
    const char *name;
    Reply reply; // result, length field, decoded length, null data
};

constexpr std::array<NamedReply, 29> kReplies = {{
    {"short, no byte", {kRefused, 0, 0, false}},
    {"short, one byte", {kRefused, 0, 1, false}},
    {"short, the result alone", {kRefused, 0, 4, false}},
    {"short, one byte of the length field", {kRefused, 0xffffffff, 5, false}},
    {"short, one byte missing", {kRefused, 0, 7, false}},
    {"short, one byte missing, a length field that wraps", {kRefused, 0xffffffff, 7, false}},
    {"short, no byte, a length field that wraps", {kRefused, 0xfffffff8, 0, false}},
    {"long, one byte of data", {kRefused, 1, 9, false}},
    {"long, one byte less than the buffer", {kRefused, 1015, 1023, false}},
    {"long, the whole buffer", {kRefused, 1016, 1024, false}},
    {"over-long by a byte", {kRefused, 1017, 1025, false}},
    {"over-long, a page", {kRefused, 4088, 4096, false}},
    {"over-long, 2 GiB", {kRefused, 0x7ffffff8, 0x80000000, false}},
    {"over-long, 4 GiB", {kRefused, 0xfffffff7, 0xffffffff, false}},
    {"null, no length", {kRefused, 0, 0, true}},
    {"null, one byte missing", {kRefused, 0, 7, true}},
    {"null, a head", {kRefused, 0, 8, true}},
    {"null, one byte of data", {kRefused, 1, 9, true}},
    {"null, the whole buffer", {kRefused, 1016, 1024, true}},
    {"null, over-long", {kRefused, 0xfffffff7, 0xffffffff, true}},
    {"inconsistent, data promised and none there", {kRefused, 1, 8, false}},
    {"inconsistent, data there and none promised", {kRefused, 0, 9, false}},
    {"inconsistent, one byte less than promised", {kRefused, 17, 24, false}},
    {"inconsistent, the length field counts the head", {kRefused, 8, 8, false}},
    {"inconsistent, a length field that wraps to 0", {kRefused, 0xfffffff8, 8, false}},
    {"inconsistent, the largest length field", {kRefused, 0xffffffff, 8, false}},
    {"inconsistent and over-long by a byte", {kRefused, 0, 1025, false}},
    {"inconsistent and over-long", {kRefused, 0, 0xffffffff, false}},
    {"inconsistent and accepted", {0, 4, 8, false}},
}};

// The steps of a request, as trace lines name them.
struct Step {
    std::string_view call;
    std::int32_t Exchange::*result;
};

constexpr std::array<Step, 5> kSteps = {{
    {"cmf-object", &Exchange::object_set},
    {"cmf-encode", &Exchange::encode},
    {"cmf-send", &Exchange::send},
    {"cmf-receive", &Exchange::receive},
    {"cmf-decode", &Exchange::decode},
}};

// The calls of a trace, counted as a scenario counts them. What happened anyway
// is no failure to try.
class Calls
{
public:
    Calls(const Scenario &scenario, const TakeFailure &take) : scenario_(scenario), take_(take) {}

    // Whether the call that `line` records can fail.
    bool failEach(const std::string &line)
    {
        const std::string call = line.substr(0, line.find(' '));
        const std::size_t arrow = line.rfind(" -> ");
        answer_ = arrow == std::string::npos ? "" : line.substr(arrow + 4);
        if (call == "changes-iter") {
            codes(
                call, [](Scenario & failing) -> auto & { return failing.changes_iter; });
        } else if (call == "next") {
            codes(
                counted(call, ++next_), [this](Scenario & failing) -> auto & {
                    return failing.next_result[next_];
                });
        } else if (call == "strerror") {
            null(call, [](Scenario &failing) { failing.strerror_null = true; });
        } else if (call == "node-name") {
            null(counted(call, ++node_name_),
                 [this](Scenario &failing) { failing.node_name_null.insert(node_name_); });
        } else if (call == "key") {
            null(counted(call, ++key_),
                 [this](Scenario &failing) { failing.key_null.insert(key_); });
        } else if (call == "unhex") {
            codes(
                counted(call, ++unhex_), [this](Scenario & failing) -> auto & {
                    return failing.unhex_result[unhex_];
                });
        } else if (call == "cmf-init") {
            ++request_;
            null(counted(call, request_),
                 [this](Scenario &failing) { exchange(failing).null_context = true; });
        } else {
            return failStep(call);
        }
        return true;
    }

private:
    bool failStep(const std::string &call)
    {
        const auto *const step = std::find_if(
            kSteps.begin(), kSteps.end(), [&](const Step &known) { return known.call == call; });
        if (step == kSteps.end())
            return false;
        codes(
            counted(call, request_), [&](Scenario & failing) -> auto & {
                return exchange(failing).*step->result;
            });
        if (call == "cmf-decode" && answer_ == "0")
            replies();
        return true;
    }

    // Refusals, and replies that are out of shape.
    void replies()
    {
        const auto answered = [this](const std::string &name, const Reply &reply) {
            Scenario failing = scenario_;
            exchange(failing).reply = reply;
            take_(failing, counted("reply", request_) + ": " + name);
        };
        for (const std::int32_t code : kCodes)
            answered("result " + std::to_string(code), {static_cast<std::uint32_t>(code), 0, 8});
        for (const NamedReply &shape : kReplies)
            answered(shape.name, shape.reply);
    }

    static std::string counted(const std::string &what, std::size_t number)
    {
        return what + ' ' + std::to_string(number);
    }

    Exchange &exchange(Scenario &failing) const
    {
        return failing.exchanges[request_];
    }

    template <typename ResultOf> void codes(const std::string &call, const ResultOf &resultOf)
    {
        for (const std::int32_t code : kCodes) {
            if (answer_ == std::to_string(code))
                continue;
            Scenario failing = scenario_;
            resultOf(failing) = code;
            take_(failing, call + " returns " + std::to_string(code));
        }
    }

    template <typename MakeNull> void null(const std::string &call, const MakeNull &makeNull)
    {
        if (answer_ == "null")
            return;
        Scenario failing = scenario_;
        makeNull(failing);
        take_(failing, call + " is null");
    }

    const Scenario &scenario_;
    const TakeFailure &take_;
    std::string answer_; // of the call at hand
    std::size_t next_ = 0;
    std::size_t node_name_ = 0;
    std::size_t key_ = 0;
    std::size_t unhex_ = 0;
    std::size_t request_ = 0;
};

} // namespace

std::size_t forEachFailure(const Scenario &scenario, const Trace &trace, const TakeFailure &take)
{
    Calls calls(scenario, take);
    return static_cast<std::size_t>(std::count_if(
        trace.begin(), trace.end(), [&](const std::string &line) { return calls.failEach(line); }));
}

} // namespace aaanc::test
