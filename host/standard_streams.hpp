// The streams that a process is started with: they may be closed, full, or a pipe
// that nobody reads any more.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace aaanc
{

// Takes the numbers of those that are closed, so that no file of our own gets one
// and is mistaken for a stream. To be called before anything is opened.
void holdClosedStreams();

// Writes and flushes. The first failure is kept for endOutput().
void writeOutput(std::FILE *output, std::string_view text);

// Flushes standard output, and tells if anything written to it was lost; a pipe
// whose reader has gone knows. The exit status: `status`, unless it is 0 and
// something was lost.
int endOutput(int status);

// A line "aaanc: MESSAGE" on standard error. Never throws: a message that cannot
// be written is nobody's any more.
void tellError(const std::string &message);

} // namespace aaanc
