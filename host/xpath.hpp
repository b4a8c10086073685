// Instance paths as the platform's xpath functions see them.
#pragma once

#include <cstddef>
#include <string_view>

namespace aaanc
{

// Whether `xpath` is of schema node `path` (which has no predicates) or of one below it.
bool isAtOrBelow(std::string_view xpath, std::string_view path);

// Bytes of an xpath that is handed to a plug-in: two NULs end it. A single one
// stands where xpathKeyValue() has cut it.
std::size_t xpathBufferSize(std::string_view xpath);

// The last node with its predicates, as a pointer into `xpath`; null when there
// is only one node. A '/' inside quotes separates nothing.
const char *xpathNodeName(const char *xpath);

// The value of key `key` of node `node`, as a pointer into `xpath`; null if it
// is not there. The quote behind the value becomes a NUL. Keys before and
// behind a cut are found nevertheless, so `xpath` has to end in two NULs.
char *xpathKeyValue(char *xpath, std::string_view node, std::string_view key);

} // namespace aaanc
