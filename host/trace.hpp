// Recordings of what callbacks were delivered: docs/trace-format.md.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "changes.hpp"
#include "schema.hpp"

namespace aaanc
{

struct RecordedCallback {
    std::size_t line = 0; // of the file, 1-based
    std::string subtree;
    std::uint32_t event = 0;
    std::vector<Change> changes;
};

struct Trace {
    std::string file; // its name, for errors
    std::vector<RecordedCallback> callbacks;
};

// Reads the text of file `name`. A plug-in takes the type of a leaf on trust, so
// one that is not of the kind that `schema` has is refused. Throws InputError,
// whose message quotes no text of a value: it may be a shared key.
Trace readTrace(const Schema &schema, const std::string &name, std::string_view text);

// The lines of a callback, as they are read.
std::string traceOf(std::string_view subtree, std::uint32_t event, const ChangeRefs &changes);

} // namespace aaanc
