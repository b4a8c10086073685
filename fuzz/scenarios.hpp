// Scenarios out of a fuzzer's input.
#pragma once

#include "bytes.hpp"

#include "harness/scenario.hpp"
#include "model/schema.hpp"

#include <string_view>

namespace aaanc::test::fuzz
{

// A callback of the schema, to be filled; everything succeeds.
Scenario emptyScenario(const model::Schema &schema);

// An entry of a list, or the container, with a value for each of its nodes.
struct Entry {
    std::string xpath;
    std::vector<Value> values;
};

// Entry number `number` as a user would write it. Entries differ in all keys.
Entry plainEntry(const model::Schema &schema, unsigned number);

// One change of node `node` of the entry. Created and modified have a new value,
// modified and deleted an old one.
Change nodeChange(std::uint32_t oper, const model::Schema &schema, const Entry &entry,
                  std::size_t node);

// All that is delivered when the entry is created.
void createEntry(Scenario &scenario, const model::Schema &schema, const Entry &entry);

// How the CMF calls of one request behave.
Exchange takeExchange(Bytes &bytes);

// The changes, and all that can go wrong beside them.
Scenario takeScenario(Bytes &bytes);

// Reads `callback XPATH event N` and `change OPER old=VALUE new=VALUE` lines; a
// VALUE is XPATH|TYPE|TEXT or -. Passes over what it cannot read.
std::vector<Scenario> readRecording(std::string_view text);

// A value whose type does not suit its leaf is outside the contract: gives the
// leaves of the changes values that do.
void suitContract(Scenario &scenario);

} // namespace aaanc::test::fuzz
