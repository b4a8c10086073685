// The two forms of output.
#pragma once

#include <cstdio>
#include <memory>

#include "records.hpp"

namespace aaanc
{

// Of the JSON form. Raised when a record changes its form; new members alone do
// not raise it.
constexpr int kJsonFormat = 1;

struct OutputOptions {
    bool json = false;
    bool hex = false;       // parameter blocks as bytes, too
    bool show_keys = false; // shared keys as they are, instead of "****"
    bool log_lines = false; // of the plug-in come in between: no line is left open
};

// For people, or JSON: an object a line, whose "record" names what it is. Each
// record is flushed. `output` outlives the writer.
std::unique_ptr<RecordWriter> makeWriter(const OutputOptions &options, std::FILE *output);

std::unique_ptr<RecordWriter> makeTextWriter(const OutputOptions &options, std::FILE *output);
std::unique_ptr<RecordWriter> makeJsonWriter(const OutputOptions &options, std::FILE *output);

} // namespace aaanc
