// What is fuzzed of the plug-in.
#pragma once

#include "target.hpp"

namespace aaanc::test::fuzz
{

// Steps that build up one callback's changes and the platform's behaviour.
std::string fuzzChanges(Bytes bytes);
// Text: changes in the form that recordings of the platform have.
std::string fuzzRecording(Bytes bytes);
// What becomes of the requests of a plain edit, replies included.
std::string fuzzReply(Bytes bytes);
// The shared key and its type, in the four server lists.
std::string fuzzKey(Bytes bytes);
// The IPv6 address check, by itself and in the two lists that make it.
std::string fuzzAddress(Bytes bytes);

} // namespace aaanc::test::fuzz
