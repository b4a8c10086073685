// What is fuzzed of the host.
#pragma once

#include "target.hpp"

namespace aaanc::test::fuzz
{

// A text, read as an edit and applied to a configuration.
std::string fuzzXmlEdit(Bytes bytes);
std::string fuzzJsonEdit(Bytes bytes);
// A recording, for aaanc replay.
std::string fuzzTrace(Bytes bytes);
// A hex dump, for aaanc decode.
std::string fuzzDump(Bytes bytes);
// Packets to the AAA service.
std::string fuzzFrames(Bytes bytes);

} // namespace aaanc::test::fuzz
