// Applies an edit to data.
#pragma once

#include "data_tree.hpp"
#include "document.hpp"

namespace aaanc
{

// The state that `data` becomes by `edit`, with the meaning of NETCONF
// edit-config (RFC 6241 section 7.2). Throws InputError, with a netconf error
// tag, where the data do not let an operation be done, or where the result is
// not valid.
DataTree applyEdit(const Schema &schema, const DataTree &data, const Document &edit);

} // namespace aaanc
