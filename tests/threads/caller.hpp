// One callback of the plug-in, called again and again on a thread of its own.
#pragma once

#include <barrier>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "cmf_client.hpp"
#include "delivery.hpp"
#include "harness/scenario.hpp"
#include "model/schema.hpp"
#include "plugin.hpp"

namespace aaanc::test
{

// What became of the requests of a caller, or of all.
struct Tally {
    std::size_t callbacks = 0;
    std::size_t failed = 0; // callbacks with a result other than 0
    std::size_t accepted = 0;
    std::size_t refused = 0;       // and odd replies
    std::size_t not_connected = 0; // the service was away
    std::size_t lost = 0;          // the service went while the request was under way
    std::size_t timed_out = 0;     // must not happen: it answers, or it is gone
    std::map<std::string, std::size_t> accepted_blocks; // in hexadecimal; how often

    void add(const aaanc::Exchange &exchange);
    void add(const Tally &other);
};

// Gives each exchange to the caller on whose thread it happened.
class ExchangeSorter : public ExchangeObserver
{
public:
    void exchanged(const aaanc::Exchange &exchange) override;
};

class Caller : private DeliveryObserver
{
public:
    // Callbacks of `schema`, with changes made from `seed` and `number`. The
    // first of each round is held until those of all callers have come to
    // `together`.
    Caller(const std::filesystem::path &plugin, const model::Schema &schema, std::uint64_t seed,
           std::size_t number, std::barrier<> &together);
    ~Caller() override;
    Caller(const Caller &) = delete;
    Caller &operator=(const Caller &) = delete;

    // Some callbacks. Holds the requests and the result of each against those
    // that the model expects of a platform that behaves as it did.
    void playRound();

    [[nodiscard]] const Tally &tally() const
    {
        return tally_;
    }

private:
    void callbackBegins(const Notification &notification) override;
    void callbackEnded(const Notification &notification, int result) override;
    void play();
    Scenario makeScenario();
    void judge(Scenario scenario, int result);

    const model::Schema &schema_;
    std::uint64_t seed_;
    std::uint64_t next_scenario_;
    std::barrier<> &together_;
    bool waits_ = false; // for the others
    Plugin plugin_;
    Delivery delivery_{this};
    std::vector<aaanc::Exchange> exchanges_; // of the callback under way
    Tally tally_;
};

} // namespace aaanc::test
