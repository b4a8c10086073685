#include "scenarios.hpp"

#include "harness/device.hpp"
#include "harness/fake_platform.hpp"

#include <algorithm>
#include <cstdlib>
#include <map>

namespace aaanc::test::fuzz
{

using model::Content;
using model::Node;
using model::Random;
using model::Schema;

namespace
{

constexpr std::size_t kMostChanges = 48;
constexpr std::uint32_t kListType = 2;
constexpr std::uint32_t kContainerType = 3;
constexpr std::uint32_t kBoolType = 9;
constexpr std::uint32_t kStringType = 18;
constexpr std::uint32_t kUint8Type = 19;
constexpr std::uint32_t kUint16Type = 20;
constexpr std::uint32_t kUint32Type = 21;

// Of a number; kStringType for what is none.
std::uint32_t typeOf(Content content)
{
    switch (content) {
    case Content::StartFail:
    case Content::Priority:
        return kUint8Type;
    case Content::Port:
        return kUint16Type;
    case Content::Interval:
        return kUint32Type;
    default:
        return kStringType;
    }
}

std::string plainText(const Node &node, unsigned number)
{
    const std::string digit = std::to_string(number);
    switch (node.content) {
    case Content::InterfaceName:
        return "vlan" + digit;
    case Content::VrfName:
        return "vrf" + digit;
    case Content::DomainName:
        return "d" + digit;
    case Content::Ipv4Address:
        return "192.0.2." + digit;
    case Content::Ipv6Address:
        return "2001:db8::" + digit;
    case Content::GroupName:
        return "group" + digit;
    case Content::MethodGroupName:
        return "g" + std::to_string(node.pair);
    case Content::ServerType:
        return number % 2 == 0 ? "tacacs" : "radius";
    case Content::GroupWord:
        return number % 2 == 0 ? "tacacs-group" : "radius-group";
    case Content::Protocol:
        return "dot1x";
    case Content::Stage:
        return "start-stop";
    case Content::KeyType:
        return "0";
    default:
        return "6b6579";
    }
}

Value plainValue(const Node &node, unsigned number)
{
    Value value;
    value.type = typeOf(node.content);
    if (node.content == Content::Container)
        value.type = kContainerType;
    else if (value.type == kStringType)
        value.data = plainText(node, number);
    else
        value.data = std::uint32_t{number};
    return value;
}

// The xpath of the entry that has these keys.
std::string entryXpath(const Schema &schema, const std::vector<Value> &values)
{
    std::string xpath = schema.xpath;
    for (std::size_t i = 0; i < schema.nodes.size(); ++i) {
        if (!schema.nodes[i].is_key)
            continue;
        const std::string text = model::keyText(values[i]);
        const char quote = text.find('\'') == std::string::npos ? '\'' : '"';
        xpath += '[' + schema.nodes[i].name() + '=' + quote + text + quote + ']';
    }
    return xpath;
}

} // namespace

Scenario emptyScenario(const Schema &schema)
{
    Scenario scenario;
    scenario.callback = schema.callback;
    scenario.xpath = schema.xpath;
    return scenario;
}

Entry plainEntry(const Schema &schema, unsigned number)
{
    Entry entry;
    for (const Node &node : schema.nodes)
        entry.values.push_back(plainValue(node, number));
    entry.xpath = schema.is_list ? entryXpath(schema, entry.values) : schema.xpath;
    return entry;
}

Change nodeChange(std::uint32_t oper, const Schema &schema, const Entry &entry, std::size_t node)
{
    Value value = entry.values[node];
    value.xpath = entry.xpath + '/' + schema.nodes[node].path;
    Change change;
    change.oper = oper;
    if (oper == 1 || oper == 2)
        change.old_value = value;
    if (oper != 2)
        change.new_value = value;
    return change;
}

void createEntry(Scenario &scenario, const Schema &schema, const Entry &entry)
{
    Change self;
    self.new_value = Value{entry.xpath, schema.is_list ? kListType : kContainerType, {}};
    scenario.changes.push_back(self);
    for (std::size_t i = 0; i < schema.nodes.size(); ++i)
        scenario.changes.push_back(nodeChange(0, schema, entry, i));
}

// ---- Steps -------------------------------------------------------------------

namespace
{

std::int32_t takeCode(Bytes &bytes)
{
    static constexpr std::int32_t kCodes[] = {0, 1, 2, 3, 4, 5, 7, 8, 13, 43, 49, 52, -1, 46};
    const std::size_t which = bytes.below(16);
    return which < std::size(kCodes) ? kCodes[which] : static_cast<std::int32_t>(bytes.word());
}

// Of a call that must not report success.
std::int32_t takeFailure(Bytes &bytes)
{
    const std::int32_t code = takeCode(bytes);
    return code == 0 ? 1 : code;
}

// A call's number, from 1.
std::size_t takeCall(Bytes &bytes)
{
    return bytes.byte() + std::size_t{1};
}

std::string takeText(Bytes &bytes)
{
    const std::uint8_t kind = bytes.byte();
    if (kind < 128)
        return bytes.text();
    // One piece, over and over.
    const std::string piece = bytes.text();
    std::string text;
    for (unsigned left = kind - 127U; left > 0 && text.size() < 600; --left)
        text += piece;
    return text;
}

Value takeValue(Bytes &bytes, const Node &node)
{
    const std::uint8_t kind = bytes.byte();
    if (kind < 200) {
        Random random(kind, bytes.byte());
        return model::randomValue(random, node.content);
    }
    Value value;
    value.type = typeOf(node.content);
    if (value.type != kStringType)
        value.data = bytes.word();
    else if (kind < 250)
        value.data = takeText(bytes);
    else
        value.data = NullString{};
    return value;
}

Entry takeEntry(Bytes &bytes, const Schema &schema)
{
    const unsigned number = bytes.byte();
    Entry entry = plainEntry(schema, number);
    if (number < 4)
        return entry;
    for (std::size_t i = 0; i < schema.nodes.size(); ++i)
        entry.values[i] = takeValue(bytes, schema.nodes[i]);
    if (schema.is_list)
        entry.xpath = entryXpath(schema, entry.values);
    // Sometimes not all of the xpath.
    if (number > 250)
        entry.xpath.resize(std::min<std::size_t>(entry.xpath.size(), bytes.byte()));
    return entry;
}

std::uint32_t takeOperation(Bytes &bytes)
{
    const std::uint8_t kind = bytes.byte();
    return kind < 240 ? kind % 3U : kind < 250 ? 3U : bytes.word();
}

// A node of the schema, with a value of its own or the entry's, or another node;
// as it comes, or with something missing.
Change takeChange(Bytes &bytes, const Schema &schema, const Entry &entry)
{
    const std::uint32_t oper = takeOperation(bytes);
    const std::size_t node = bytes.below(schema.nodes.size() + 2);
    Change change;
    if (node < schema.nodes.size()) {
        Entry changed = entry;
        if (bytes.below(2) == 1)
            changed.values[node] = takeValue(bytes, schema.nodes[node]);
        change = nodeChange(oper, schema, changed, node);
    } else {
        Value value;
        value.xpath = entry.xpath;
        value.type = kListType;
        if (node > schema.nodes.size())
            *value.xpath += '/' + takeText(bytes);
        change.oper = oper;
        (oper == 2 ? change.old_value : change.new_value) = value;
    }
    std::optional<Value> &chosen = oper == 2 ? change.old_value : change.new_value;
    switch (bytes.byte()) {
    case 251:
        chosen.reset();
        break;
    case 252:
        std::swap(change.old_value, change.new_value);
        break;
    case 253:
        change.old_value = change.new_value = chosen;
        break;
    case 254:
        if (chosen)
            chosen->xpath.reset();
        break;
    case 255:
        if (chosen)
            chosen->xpath = takeText(bytes);
        break;
    default:
        break;
    }
    return change;
}

void deleteEntry(Scenario &scenario, const Schema &schema, const Entry &entry)
{
    for (std::size_t i = 0; i < schema.nodes.size(); ++i)
        scenario.changes.push_back(nodeChange(2, schema, entry, i));
    Change self;
    self.oper = 2;
    self.old_value = Value{entry.xpath, schema.is_list ? kListType : kContainerType, {}};
    scenario.changes.push_back(self);
}

void takePlatformFailure(Bytes &bytes, Scenario &scenario)
{
    const std::size_t call = takeCall(bytes);
    switch (bytes.below(8)) {
    case 0:
        scenario.changes_iter = takeCode(bytes);
        break;
    case 1:
        scenario.next_result[call] = takeFailure(bytes);
        break;
    case 2:
        scenario.end_of_changes = takeFailure(bytes);
        break;
    case 3:
        scenario.node_name_null.insert(call);
        break;
    case 4:
        scenario.key_null.insert(call);
        break;
    case 5:
        scenario.unhex_result[call] = takeCode(bytes);
        break;
    case 6:
        scenario.log_level_from_call[call] = static_cast<int>(bytes.below(6));
        break;
    default:
        scenario.exchanges[(call - 1) % 4 + 1] = takeExchange(bytes);
    }
}

} // namespace

Exchange takeExchange(Bytes &bytes)
{
    static constexpr std::uint32_t kLengths[] = {
        0,    1,    4,    7,    8,    9,          12,         1016,       1017,       1023,
        1024, 1025, 4088, 4096, 5000, 0x7fffffff, 0x80000000, 0xfffffff7, 0xfffffff8, 0xffffffff};
    Exchange exchange;
    switch (bytes.below(8)) {
    case 0:
        exchange.null_context = true;
        break;
    case 1:
        exchange.object_set = takeCode(bytes);
        break;
    case 2:
        exchange.encode = takeCode(bytes);
        break;
    case 3:
        exchange.send = takeCode(bytes);
        break;
    case 4:
        exchange.receive = takeCode(bytes);
        break;
    case 5:
        exchange.decode = takeCode(bytes);
        break;
    default:
        break;
    }
    Reply &reply = exchange.reply;
    reply.result = static_cast<std::uint32_t>(takeCode(bytes));
    switch (bytes.below(4)) {
    case 0: // as it should be
        break;
    case 1:
        reply.length_field = bytes.oneOf(kLengths);
        reply.decoded_length = reply.length_field + 8;
        break;
    case 2:
        reply.length_field = bytes.oneOf(kLengths);
        reply.decoded_length = bytes.oneOf(kLengths);
        break;
    default:
        reply.length_field = bytes.word();
        reply.decoded_length = bytes.word();
    }
    reply.null_data = bytes.byte() == 255;
    return exchange;
}

Scenario takeScenario(Bytes &bytes)
{
    static constexpr std::uint32_t kEvents[] = {1, 3, 1, 3, 1, 3, 0, 2, 4, 5, 0x80000001};
    static constexpr int kLevels[] = {4, 4, 4, 0, 1, 3, 5, -1};

    const Schema &schema = model::schemas()[bytes.below(model::schemas().size())];
    Scenario scenario = emptyScenario(schema);
    scenario.event = bytes.oneOf(kEvents);
    scenario.log_level = bytes.oneOf(kLevels);
    scenario.cuts_xpath = bytes.below(2) == 0;
    Entry entry = plainEntry(schema, 1);
    while (!bytes.empty() && scenario.changes.size() < kMostChanges) {
        const std::size_t step = bytes.below(16);
        if (step == 0)
            createEntry(scenario, schema, entry);
        else if (step == 1)
            deleteEntry(scenario, schema, entry);
        else if (step == 2)
            takePlatformFailure(bytes, scenario);
        else if (step < 6)
            entry = takeEntry(bytes, schema);
        else
            scenario.changes.push_back(takeChange(bytes, schema, entry));
    }
    suitContract(scenario);
    return scenario;
}

// ---- Recordings ----------------------------------------------------------------

namespace
{

// What stands before `separator`; `text` is then what stands behind it.
std::string_view takeUntil(std::string_view &text, std::string_view separator)
{
    const std::size_t end = text.find(separator);
    const std::string_view head = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + separator.size());
    return head;
}

std::uint32_t numberIn(std::string_view text)
{
    return static_cast<std::uint32_t>(std::strtoull(std::string(text).c_str(), nullptr, 10));
}

std::optional<Value> readValue(std::string_view text)
{
    if (text == "-")
        return std::nullopt;
    Value value;
    value.xpath = std::string(takeUntil(text, "|"));
    value.type = numberIn(takeUntil(text, "|"));
    value.data = std::string(text);
    return value;
}

std::uint32_t readOperation(std::string_view word)
{
    static constexpr std::string_view kWords[] = {"CREATED", "MODIFIED", "DELETED", "MOVED"};
    const auto *found = std::find(std::begin(kWords), std::end(kWords), word);
    return found == std::end(kWords) ? numberIn(word)
                                     : static_cast<std::uint32_t>(found - std::begin(kWords));
}

std::optional<Scenario> readCallback(std::string_view line)
{
    const std::string_view xpath = takeUntil(line, " event ");
    for (const Subscription &row : kSubscriptions) {
        if (xpath != row.xpath)
            continue;
        Scenario scenario;
        scenario.callback = row.callback;
        scenario.xpath = row.xpath;
        scenario.event = numberIn(line);
        return scenario;
    }
    return std::nullopt;
}

Change readChange(std::string_view line)
{
    Change change;
    change.oper = readOperation(takeUntil(line, " old="));
    change.old_value = readValue(takeUntil(line, " new="));
    change.new_value = readValue(line);
    return change;
}

} // namespace

std::vector<Scenario> readRecording(std::string_view text)
{
    std::vector<Scenario> scenarios;
    while (!text.empty()) {
        std::string_view line = takeUntil(text, "\n");
        const std::string_view word = takeUntil(line, " ");
        if (word == "callback") {
            if (const auto scenario = readCallback(line))
                scenarios.push_back(*scenario);
        } else if (word == "change" && !scenarios.empty() &&
                   scenarios.back().changes.size() < kMostChanges) {
            scenarios.back().changes.push_back(readChange(line));
        }
    }
    for (Scenario &scenario : scenarios)
        suitContract(scenario);
    return scenarios;
}

// ---- The contract --------------------------------------------------------------

namespace
{

// The type of each leaf that holds a number.
std::map<std::string, std::uint32_t> numberLeaves()
{
    std::map<std::string, std::uint32_t> types;
    for (const Schema &schema : model::schemas()) {
        for (const Node &node : schema.nodes) {
            if (typeOf(node.content) != kStringType)
                types[node.name()] = typeOf(node.content);
        }
    }
    return types;
}

void suitValue(std::optional<Value> &value)
{
    static const std::map<std::string, std::uint32_t> kNumbers = numberLeaves();
    if (!value)
        return;
    const std::string xpath = value->xpath.value_or("");
    const auto offset = nodeNameOffset(xpath);
    const auto found = kNumbers.find(offset ? xpath.substr(*offset) : "");
    const auto *text = std::get_if<std::string>(&value->data);
    if (found == kNumbers.end()) {
        if (std::holds_alternative<std::uint32_t>(value->data))
            value->data = NullString{};
        return;
    }
    if (value->type != kBoolType || found->second != kUint8Type)
        value->type = found->second;
    if (text != nullptr)
        value->data = numberIn(*text);
}

} // namespace

void suitContract(Scenario &scenario)
{
    for (Change &change : scenario.changes) {
        suitValue(change.old_value);
        suitValue(change.new_value);
    }
}

} // namespace aaanc::test::fuzz
