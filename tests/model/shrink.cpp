#include "shrink.hpp"

#include "../harness/device.hpp"

#include <vector>

namespace aaanc::test::model
{
namespace
{

using Scenarios = std::vector<Scenario>;

// Adds the scenario that `alter` makes of this one.
template <typename Alter> void offer(Scenarios &out, const Scenario &scenario, Alter alter)
{
    Scenario candidate = scenario;
    alter(candidate);
    out.push_back(std::move(candidate));
}

void offerFewerChanges(Scenarios &out, const Scenario &scenario)
{
    const std::size_t count = scenario.changes.size();
    for (std::size_t run = count; run > 0; run /= 2) {
        for (std::size_t first = 0; first + run <= count; ++first)
            offer(out, scenario, [=](Scenario &s) {
                const auto begin = s.changes.begin() + static_cast<std::ptrdiff_t>(first);
                s.changes.erase(begin, begin + static_cast<std::ptrdiff_t>(run));
            });
    }
}

// Without one entry of one map or set of the scenario.
template <typename Member> void offerFewer(Scenarios &out, const Scenario &scenario, Member member)
{
    for (std::size_t i = 0; i < (scenario.*member).size(); ++i)
        offer(out, scenario, [=](Scenario &s) {
            (s.*member).erase(std::next((s.*member).begin(), static_cast<std::ptrdiff_t>(i)));
        });
}

// With one member as it is in a scenario of no ado.
template <typename Member> void offerUsual(Scenarios &out, const Scenario &scenario, Member member)
{
    static const Scenario kUsual;
    if (scenario.*member != kUsual.*member)
        offer(out, scenario, [=](Scenario &s) { s.*member = kUsual.*member; });
}

void offerFewerFailures(Scenarios &out, const Scenario &scenario)
{
    offerUsual(out, scenario, &Scenario::event);
    offerUsual(out, scenario, &Scenario::log_level);
    offerUsual(out, scenario, &Scenario::changes_iter);
    offerUsual(out, scenario, &Scenario::end_of_changes);
    offerUsual(out, scenario, &Scenario::cuts_xpath);
    offerUsual(out, scenario, &Scenario::strerror_null);
    offerFewer(out, scenario, &Scenario::log_level_from_call);
    offerFewer(out, scenario, &Scenario::next_result);
    offerFewer(out, scenario, &Scenario::node_name_null);
    offerFewer(out, scenario, &Scenario::key_null);
    offerFewer(out, scenario, &Scenario::unhex_result);
    offerFewer(out, scenario, &Scenario::exchanges);
}

// Half of the text, and one character less.
std::vector<std::string> shorter(const std::string &text)
{
    std::vector<std::string> result;
    if (text.size() > 2)
        result.push_back(text.substr(0, text.size() / 2));
    if (!text.empty()) {
        result.push_back(text.substr(0, text.size() - 1));
        result.push_back(text.substr(1));
    }
    if (text.size() > 1 && text != std::string(text.size(), '0'))
        result.emplace_back(text.size(), '0');
    return result;
}

using Which = std::optional<Value> Change::*;

void offerPlainerData(Scenarios &out, const Scenario &scenario, std::size_t change, Which which)
{
    const Value &value = *(scenario.changes[change].*which);
    const auto with = [&](const Data &data) {
        offer(out, scenario, [&](Scenario &s) { (s.changes[change].*which)->data = data; });
    };
    if (const auto *text = std::get_if<std::string>(&value.data)) {
        for (const std::string &less : shorter(*text))
            with(less);
    }
    const auto *number = std::get_if<std::uint32_t>(&value.data);
    if (number != nullptr && *number != 0)
        with(*number / 2);
}

// Shorter texts in the predicates.
void offerPlainerXpath(Scenarios &out, const Scenario &scenario, std::size_t change, Which which)
{
    const auto &xpath = (scenario.changes[change].*which)->xpath;
    if (!xpath)
        return;
    std::size_t open = xpath->find_first_of("'\"");
    while (open != std::string::npos) {
        const std::size_t close = xpath->find((*xpath)[open], open + 1);
        if (close == std::string::npos)
            return;
        for (const std::string &less : shorter(xpath->substr(open + 1, close - open - 1)))
            offer(out, scenario, [&](Scenario &s) {
                (s.changes[change].*which)->xpath->replace(open + 1, close - open - 1, less);
            });
        open = xpath->find_first_of("'\"", close + 1);
    }
}

void offerPlainerChanges(Scenarios &out, const Scenario &scenario)
{
    for (std::size_t i = 0; i < scenario.changes.size(); ++i) {
        for (const Which which : {&Change::old_value, &Change::new_value}) {
            if (!(scenario.changes[i].*which))
                continue;
            offer(out, scenario, [=](Scenario &s) { (s.changes[i].*which).reset(); });
            offerPlainerData(out, scenario, i, which);
            offerPlainerXpath(out, scenario, i, which);
        }
    }
}

Scenarios smaller(const Scenario &scenario)
{
    Scenarios out;
    offerFewerChanges(out, scenario);
    offerFewerFailures(out, scenario);
    offerPlainerChanges(out, scenario);
    return out;
}

} // namespace

Scenario shrunk(const Scenario &scenario, const std::function<bool(const Scenario &)> &fails)
{
    Scenario smallest = scenario;
    for (bool found = true; found;) {
        found = false;
        for (const Scenario &candidate : smaller(smallest)) {
            if (fails(candidate)) {
                smallest = candidate;
                found = true;
                break;
            }
        }
    }
    return smallest;
}

} // namespace aaanc::test::model
