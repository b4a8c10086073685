// Hex dumps: bytes as people and tools write them down.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cmf_wire.hpp"

namespace aaanc
{

struct Dump {
    std::optional<Bytes> object; // an object record, where the dump has one
    Bytes bytes;
};

// Reads a dump in one of three forms. In each of them what is behind a # is a
// comment.
//
// - Pairs of hexadecimal digits, with white space between any of them.
// - The same by name: the word "object" begins an object record, "parameter" the
//   bytes. In both forms HEX*N is N times HEX.
// - Lines that begin with their offset, as of xxd, hexdump -C and aaanc --hex. Text
//   at their right is left out; "*" stands for more of the line above it.
//
// Throws InputError, which quotes nothing: there may be shared keys among it.
Dump readDump(const std::string &name, std::string_view text);

} // namespace aaanc
