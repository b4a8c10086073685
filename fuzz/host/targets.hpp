// What is fuzzed of the host.
#pragma once

#include "target.hpp"

namespace aaanc::test::fuzz
{

// A text, read as an edit and applied to a configuration.
std::string fuzzXmlEdit(Bytes bytes);
std::string fuzzJsonEdit(Bytes bytes);
// Packets to the AAA service.
std::string fuzzFrames(Bytes bytes);

} // namespace aaanc::test::fuzz
