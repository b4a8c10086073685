#include "caller.hpp"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <utility>
#include <variant>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "hex.hpp"
#include "model/edit.hpp"
#include "model/model.hpp"

namespace aaanc::test
{

namespace
{

constexpr int kCallbacksPerRound = 10;
// Far more than a caller ever makes.
constexpr std::uint64_t kScenariosPerCaller = 1'000'000;

thread_local std::vector<aaanc::Exchange> *exchanges_of_this_thread = nullptr;

std::string hexOf(const aaanc::Exchange &exchange)
{
    return hexText(exchange.request.parameter.data, [](std::size_t) { return false; });
}

std::uint32_t widthMask(std::uint32_t type)
{
    switch (type) {
    case SR_BOOL_T:
        return 1;
    case SR_UINT8_T:
        return 0xff;
    case SR_UINT16_T:
        return 0xffff;
    default:
        return 0xffffffff;
    }
}

// The datastore has no strings without text, and no numbers wider than their type.
void makeOrdinary(std::optional<Value> &value)
{
    if (value && std::holds_alternative<NullString>(value->data)) {
        value->data = std::string();
    }
    if (value && std::holds_alternative<std::uint32_t>(value->data)) {
        value->data = std::get<std::uint32_t>(value->data) & widthMask(value->type);
    }
}

std::string textOf(const Value &value)
{
    if (const auto *text = std::get_if<std::string>(&value.data)) {
        return *text;
    }
    const auto *number = std::get_if<std::uint32_t>(&value.data);
    if (number == nullptr) {
        return {};
    }
    if (value.type == SR_BOOL_T) {
        return *number != 0 ? "true" : "false";
    }
    return std::to_string(*number);
}

std::optional<aaanc::Value> forHost(const std::optional<Value> &value)
{
    return value ? std::optional(aaanc::Value{value->xpath.value(), value->type, textOf(*value)})
                 : std::nullopt;
}

std::vector<aaanc::Change> forHost(const std::vector<Change> &changes)
{
    std::vector<aaanc::Change> result;
    for (const Change &change : changes) {
        result.push_back({change.oper, forHost(change.old_value), forHost(change.new_value)});
    }
    return result;
}

Reply replyOf(const Parameter &parameter)
{
    std::uint32_t words[2] = {};
    if (!parameter.data.empty()) {
        std::memcpy(words, parameter.data.data(), std::min(sizeof words, parameter.data.size()));
    }
    return {words[0], words[1], parameter.length, parameter.data.empty()};
}

// The behaviour of the platform that this exchange had.
Exchange behaviourOf(const aaanc::Exchange &exchange)
{
    Exchange behaviour;
    switch (exchange.step) {
    case CmfStep::Connect:
        behaviour.null_context = true;
        break;
    case CmfStep::Object:
        behaviour.object_set = exchange.code;
        break;
    case CmfStep::Encode:
        behaviour.encode = exchange.code;
        break;
    case CmfStep::Send:
        behaviour.send = exchange.code;
        break;
    case CmfStep::Receive:
        behaviour.receive = exchange.code;
        break;
    case CmfStep::Decode:
        behaviour.decode = exchange.code;
        break;
    case CmfStep::Done:
        behaviour.reply = replyOf(exchange.reply);
    }
    return behaviour;
}

// The lines that a trace has of an exchange, up to its closing.
void addLines(Trace &trace, const aaanc::Exchange &exchange)
{
    const ObjectRecord &object = exchange.request.object;
    const Parameter &parameter = exchange.request.parameter;
    const std::string calls[] = {
        "cmf-init \"aaa\" 145 1",
        fmt::format("cmf-object {} {} {}", object.type, object.operation, object.zero),
        fmt::format("cmf-encode {} {} {}", parameter.kind, parameter.length, hexOf(exchange)),
        "cmf-send",
        "cmf-receive",
        "cmf-decode",
    };
    if (exchange.step == CmfStep::Connect) {
        trace.push_back(calls[0] + " -> null");
        return;
    }
    trace.push_back(calls[0] + " -> ok");
    const auto end = static_cast<std::size_t>(exchange.step);
    for (std::size_t step = 1; step < end; ++step) {
        trace.push_back(calls[step] + " -> 0");
    }
    if (exchange.code != kCmfDone) {
        trace.push_back(fmt::format("{} -> {}", calls[end], exchange.code));
    }
    trace.emplace_back("cmf-close");
}

} // namespace

void Tally::add(const aaanc::Exchange &exchange)
{
    if (exchange.step == CmfStep::Connect) {
        ++not_connected;
    } else if (exchange.code == kCmfTimeout) {
        ++timed_out;
    } else if (exchange.step != CmfStep::Done) {
        ++(exchange.code == kCmfClosed ? lost : refused);
    } else if (exchange.reply.data == Bytes(8)) {
        ++accepted;
        ++accepted_blocks[hexOf(exchange)];
    } else {
        ++refused;
    }
}

void Tally::add(const Tally &other)
{
    callbacks += other.callbacks;
    failed += other.failed;
    accepted += other.accepted;
    refused += other.refused;
    not_connected += other.not_connected;
    lost += other.lost;
    timed_out += other.timed_out;
    for (const auto &[block, count] : other.accepted_blocks) {
        accepted_blocks[block] += count;
    }
}

void ExchangeSorter::exchanged(const aaanc::Exchange &exchange)
{
    exchanges_of_this_thread->push_back(exchange);
}

Caller::Caller(const std::filesystem::path &plugin, const model::Schema &schema, std::uint64_t seed,
               std::size_t number, std::barrier<> &together)
    : schema_(schema), seed_(seed), next_scenario_(number * kScenariosPerCaller),
      together_(together), plugin_(plugin)
{
    if (plugin_.initialise(delivery_.session()) != 0) {
        throw std::runtime_error("the plug-in cannot be initialised");
    }
}

Caller::~Caller()
{
    plugin_.cleanUp(delivery_.session());
}

void Caller::playRound()
{
    waits_ = true;
    const std::size_t not_connected = tally_.not_connected;
    for (int left = kCallbacksPerRound; left > 0; --left) {
        play();
        if (tally_.not_connected != not_connected) { // let the service come up
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            return;
        }
    }
}

void Caller::play()
{
    Scenario scenario = makeScenario();
    exchanges_.clear();
    const std::vector<aaanc::Change> changes = forHost(scenario.changes);
    const int result = delivery_.notify(scenario.xpath, scenario.event, aaanc::refsTo(changes));
    ++tally_.callbacks;
    tally_.failed += result != 0 ? 1 : 0;
    for (const aaanc::Exchange &exchange : exchanges_) {
        tally_.add(exchange);
    }
    judge(std::move(scenario), result);
}

Scenario Caller::makeScenario()
{
    static const std::vector<std::uint32_t> kEvents = {SR_EV_APPLY,   SR_EV_APPLY,   SR_EV_APPLY,
                                                       SR_EV_ENABLED, SR_EV_ENABLED, SR_EV_ENABLED,
                                                       SR_EV_VERIFY,  SR_EV_ABORT};
    model::Random random(seed_, next_scenario_++);
    Scenario scenario;
    scenario.callback = schema_.callback;
    scenario.xpath = schema_.xpath;
    scenario.event = random.oneOf(kEvents);
    scenario.log_level = 0;
    scenario.changes = model::randomEdit(random, schema_);
    for (Change &change : scenario.changes) {
        makeOrdinary(change.old_value);
        makeOrdinary(change.new_value);
    }
    return scenario;
}

void Caller::judge(Scenario scenario, int result)
{
    Trace happened;
    for (std::size_t i = 0; i < exchanges_.size(); ++i) {
        addLines(happened, exchanges_[i]);
        scenario.exchanges[i + 1] = behaviourOf(exchanges_[i]);
    }
    happened.push_back("result " + std::to_string(result));
    Trace expected = model::expect(scenario);
    std::erase_if(expected, [](const std::string &line) {
        return !line.starts_with("cmf-") && !line.starts_with("result ");
    });
    EXPECT_EQ(happened, expected) << scenario.callback << ", seed " << seed_ << ", scenario "
                                  << next_scenario_ - 1;
}

void Caller::callbackBegins(const Notification & /*notification*/)
{
    exchanges_of_this_thread = &exchanges_;
    if (std::exchange(waits_, false)) {
        together_.arrive_and_wait();
    }
}

void Caller::callbackEnded(const Notification & /*notification*/, int /*result*/)
{
    exchanges_of_this_thread = nullptr;
}

} // namespace aaanc::test
