#include "targets.hpp"

#include "check.hpp"
#include "scenarios.hpp"

#include "walk/checks.hpp"

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>

#include <arpa/inet.h>

namespace aaanc::test::fuzz
{

namespace
{

const model::Schema &schemaOf(std::string_view callback)
{
    for (const model::Schema &schema : model::schemas()) {
        if (schema.callback == callback)
            return schema;
    }
    throw std::logic_error("no such callback");
}

// The node that holds `content`.
std::size_t nodeOf(const model::Schema &schema, model::Content content)
{
    const auto &nodes = schema.nodes;
    const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const model::Node &node) {
        return node.content == content;
    });
    return static_cast<std::size_t>(found - nodes.begin());
}

} // namespace

std::string fuzzChanges(Bytes bytes)
{
    return checkScenario(takeScenario(bytes));
}

std::string fuzzRecording(Bytes bytes)
{
    std::string findings;
    for (const Scenario &scenario : readRecording(bytes.rest()))
        findings += checkScenario(scenario);
    return findings;
}

std::string fuzzReply(Bytes bytes)
{
    const auto &schemas = model::schemas();
    const model::Schema &schema = schemas[bytes.below(schemas.size())];
    Scenario scenario = emptyScenario(schema);
    scenario.log_level = static_cast<int>(bytes.below(6));
    for (const unsigned number : {1U, 2U, 3U})
        createEntry(scenario, schema, plainEntry(schema, number));
    for (std::size_t request = 1; request <= 4 && !bytes.empty(); ++request)
        scenario.exchanges[request] = takeExchange(bytes);
    return checkScenario(scenario);
}

std::string fuzzKey(Bytes bytes)
{
    static constexpr const char *kLists[] = {
        "aaaNcRadiusIpv4ConfChanges", "aaaNcRadiusIpv6ConfChanges", "aaaNctacacsIpv4ConfChanges",
        "aaaNctacacsIpv6ConfChanges"};
    const model::Schema &schema = schemaOf(bytes.oneOf(kLists));
    const std::size_t key_type = nodeOf(schema, model::Content::KeyType);
    const std::size_t key = nodeOf(schema, model::Content::Key);
    Scenario scenario = emptyScenario(schema);
    unsigned entries = 1;
    Entry entry = plainEntry(schema, entries);
    const auto change = [&](std::size_t node, const std::string &text) {
        entry.values[node].data = text;
        scenario.changes.push_back(nodeChange(0, schema, entry, node));
    };
    const auto otherLeaves = [&] {
        for (std::size_t node = 0; node < schema.nodes.size(); ++node) {
            if (node != key_type && node != key)
                scenario.changes.push_back(nodeChange(0, schema, entry, node));
        }
    };
    constexpr std::size_t kMostChanges = 40;
    while (!bytes.empty() && scenario.changes.size() < kMostChanges) {
        switch (bytes.below(6)) {
        case 0:
            change(key_type, bytes.text());
            break;
        case 1:
            change(key_type, "0");
            break;
        case 2: // as it comes, hexadecimal or not
            change(key, bytes.text());
            break;
        case 3: { // up to 510 bytes, all alike
            const std::size_t length = bytes.byte() + bytes.below(256);
            const std::string digits = bytes.below(8) == 0 ? "00" : "6B";
            std::string text;
            for (std::size_t left = length; left > 0; --left)
                text += digits;
            change(key, text);
            break;
        }
        case 4:
            otherLeaves();
            break;
        default:
            entry = plainEntry(schema, ++entries);
        }
    }
    otherLeaves();
    return checkScenario(scenario);
}

namespace
{

// The check in another way: an address is bad when it lies in one of these.
bool isBadAddress(const std::string &text)
{
    struct Prefix {
        const char *address;
        unsigned length;
    };
    static constexpr Prefix kBad[] = {{"::", 127}, {"fe80::", 9}, {"ff00::", 8}};
    const auto bitOf = [](const in6_addr &address, unsigned bit) {
        return address.s6_addr[bit / 8] >> (7 - bit % 8) & 1;
    };
    in6_addr address{};
    if (inet_pton(AF_INET6, text.c_str(), &address) != 1)
        return true;
    return std::any_of(std::begin(kBad), std::end(kBad), [&](const Prefix &bad) {
        in6_addr prefix{};
        inet_pton(AF_INET6, bad.address, &prefix);
        unsigned same = 0;
        while (same < bad.length && bitOf(prefix, same) == bitOf(address, same))
            ++same;
        return same == bad.length;
    });
}

// 16 bytes as an address, or the text as it comes.
std::string takeAddress(Bytes &bytes)
{
    if (bytes.below(2) == 0)
        return bytes.rest();
    in6_addr address{};
    for (std::uint8_t &byte : address.s6_addr)
        byte = bytes.byte();
    char text[INET6_ADDRSTRLEN] = "";
    inet_ntop(AF_INET6, &address, text, sizeof text);
    return text;
}

} // namespace

std::string fuzzAddress(Bytes bytes)
{
    static constexpr const char *kLists[] = {"aaaNcRadiusIpv6ConfChanges",
                                             "aaaNctacacsIpv6ConfChanges"};
    const char *callback = bytes.oneOf(kLists);
    const std::string address = takeAddress(bytes);
    // Without a byte to spare, so that a sanitizer sees every overrun.
    const auto exact = std::make_unique<char[]>(address.size() + 1);
    std::memcpy(exact.get(), address.c_str(), address.size() + 1);
    const int result = aaaNcServerIpCheck(exact.get());
    if (result != (isBadAddress(address) ? 0 : 1))
        return "aaaNcServerIpCheck(\"" + address + "\") is " + std::to_string(result);

    const model::Schema &schema = schemaOf(callback);
    Scenario scenario = emptyScenario(schema);
    Entry entry = plainEntry(schema, 1);
    entry.values[nodeOf(schema, model::Content::Ipv6Address)].data = address;
    createEntry(scenario, schema, entry);
    return checkScenario(scenario);
}

const std::vector<Target> &allTargets()
{
    static const std::vector<Target> targets = {{"changes", fuzzChanges},
                                                {"recording", fuzzRecording},
                                                {"reply", fuzzReply},
                                                {"key", fuzzKey},
                                                {"address", fuzzAddress}};
    return targets;
}

} // namespace aaanc::test::fuzz
