// aaanc decode: the bytes of a request, by name.
#pragma once

#include <bit>
#include <cstdint>
#include <filesystem>
#include <optional>

#include "writers.hpp"

namespace aaanc
{

struct DecodeOptions {
    std::filesystem::path file;        // "-" is standard input
    std::optional<std::uint32_t> type; // of a payload that comes without a header
    std::optional<std::endian> order;  // else the one that the header makes sense in
    OutputOptions output;
};

// Prints what a dump of a parameter block, or of a payload, says. Returns 0 when
// all of it is as it should be, else 1. Throws InputError for what is no dump, and
// for less than a header.
int decode(const DecodeOptions &options);

} // namespace aaanc
