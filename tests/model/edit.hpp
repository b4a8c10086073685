// Random edits of one subtree, as the changes that the datastore delivers.
#pragma once

#include "../harness/scenario.hpp"
#include "random.hpp"
#include "schema.hpp"

#include <vector>

namespace aaanc::test::model
{

// The changes of an edit: nothing to a few entries, created, modified, deleted.
std::vector<Change> randomEdit(Random &random, const Schema &schema);

// Makes an edit unusual: lost, doubled and reordered changes, unknown leaves,
// missing values, xpaths and keys, moved entries.
void disturb(Random &random, const Schema &schema, std::vector<Change> &changes);

} // namespace aaanc::test::model
