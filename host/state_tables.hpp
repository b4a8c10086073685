// What the AAA service holds, as tables.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "running_state.hpp"
#include "table.hpp"

namespace aaanc
{

struct StateTable {
    std::string_view title; // "RADIUS servers"
    Table table;
};

// A table for each kind of object that there is. The last column of each is the
// number of the request that the object is from.
std::vector<StateTable> stateTables(const RunningState &state, bool show_keys);

} // namespace aaanc
