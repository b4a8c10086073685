#include "generator.hpp"

#include "edit.hpp"

namespace aaanc::test::model
{
namespace
{

std::uint32_t randomEvent(Random &random)
{
    static const std::vector<std::uint32_t> kOdd = {4, 5, 7, 0x80000001, 0xffffffff};
    const std::uint32_t kind = random.below(100);
    if (kind < 66)
        return 1;
    if (kind < 92)
        return 3;
    return kind < 95 ? 0 : kind < 98 ? 2 : random.oneOf(kOdd);
}

void chooseLogLevels(Random &random, Scenario &scenario)
{
    static const std::vector<int> kLevels = {0, 1, 2, 3, 4, 4, 5};
    scenario.log_level = random.percent(60) ? 4 : random.oneOf(kLevels);
    if (!random.percent(12))
        return;
    for (std::uint32_t left = random.between(1, 4); left > 0; --left) {
        const std::uint32_t call = random.between(1, 70);
        scenario.log_level_from_call[call] = random.oneOf(kLevels);
    }
}

std::int32_t failureCode(Random &random)
{
    static const std::vector<std::int32_t> kCodes = {1,  2,  3,  4,  5,  6,  7,
                                                     13, 19, 43, 49, 52, -1, 1000};
    return random.oneOf(kCodes);
}

void failExchange(Random &random, Exchange &exchange)
{
    const std::int32_t code = failureCode(random);
    switch (random.below(7)) {
    case 0:
        exchange.null_context = true;
        break;
    case 1:
        exchange.object_set = code;
        break;
    case 2:
        exchange.encode = code;
        break;
    case 3:
        exchange.send = 5;
        break;
    case 4:
        exchange.send = code;
        break;
    case 5:
        exchange.receive = code;
        break;
    default:
        exchange.decode = code;
    }
}

void refuse(Random &random, Exchange &exchange)
{
    // The handlers know some of these from the others.
    static const std::vector<std::uint32_t> kResults = {1,  3,  3,  5,  7,  43,   43,
                                                        43, 49, 49, 52, 52, 1000, 0xffffffff};
    exchange.reply.result = random.oneOf(kResults);
}

void shapeReply(Random &random, Exchange &exchange)
{
    static const std::vector<std::uint32_t> kResults = {0,  0,  0,  1,          3,         43,
                                                        43, 49, 52, 0x80000000, 0xffffffff};
    static const std::vector<std::uint32_t> kLengths = {
        0,    0,    0,    1,          4,          8,          1016,       1017,
        2000, 4088, 5000, 0x7fffffff, 0xfffffff0, 0xfffffff7, 0xfffffff8, 0xffffffff};
    static const std::vector<std::uint32_t> kDecoded = {
        0, 1, 4, 7, 8, 9, 12, 1023, 1024, 1025, 4096, 5000, 0x7fffffff, 0x80000000, 0xffffffff};
    Reply &reply = exchange.reply;
    reply.result = random.oneOf(kResults);
    reply.length_field = random.oneOf(kLengths);
    reply.decoded_length = reply.length_field + 8;
    if (random.percent(35))
        reply.decoded_length = random.oneOf(kDecoded);
    reply.null_data = random.percent(8);
}

void chooseExchanges(Random &random, Scenario &scenario)
{
    static const std::vector<std::uint32_t> kWhich = {1, 1, 1, 1, 2, 2, 3};
    if (random.percent(12))
        failExchange(random, scenario.exchanges[random.oneOf(kWhich)]);
    if (random.percent(30))
        refuse(random, scenario.exchanges[random.oneOf(kWhich)]);
    if (random.percent(15))
        shapeReply(random, scenario.exchanges[random.oneOf(kWhich)]);
}

void chooseFailures(Random &random, Scenario &scenario)
{
    const auto changes = static_cast<std::uint32_t>(scenario.changes.size());
    if (random.percent(2))
        scenario.changes_iter = failureCode(random);
    if (random.percent(3)) {
        const std::uint32_t call = random.between(1, changes + 1);
        scenario.next_result[call] = failureCode(random);
    }
    if (random.percent(2))
        scenario.end_of_changes = failureCode(random);
    if (random.percent(2))
        scenario.node_name_null.insert(random.between(1, changes + 1));
    if (random.percent(3))
        scenario.key_null.insert(random.between(1, 4 * changes + 1));
    if (random.percent(2)) {
        const std::uint32_t call = random.between(1, 3);
        scenario.unhex_result[call] = failureCode(random);
    }
    scenario.strerror_null = random.percent(10);
}

} // namespace

Scenario randomScenario(std::uint64_t seed, std::uint64_t index)
{
    Random random(seed, index);
    const Schema &schema = random.oneOf(schemas());
    Scenario scenario;
    scenario.callback = schema.callback;
    scenario.xpath = schema.xpath;
    scenario.event = randomEvent(random);
    chooseLogLevels(random, scenario);
    scenario.cuts_xpath = random.percent(60);
    scenario.changes = randomEdit(random, schema);
    for (std::uint32_t left = random.percent(55) ? 0 : random.between(1, 3); left > 0; --left)
        disturb(random, schema, scenario.changes);
    chooseExchanges(random, scenario);
    chooseFailures(random, scenario);
    return scenario;
}

} // namespace aaanc::test::model
