// What is fuzzed. A target makes of an input whatever it stands for, plays it
// through the plug-in and says what is wrong; nothing when all is well.
#pragma once

#include "bytes.hpp"

#include <array>
#include <string_view>

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

struct Target {
    std::string_view name;
    std::string (*run)(Bytes bytes);
};

inline constexpr std::array<Target, 5> kTargets = {{{"changes", fuzzChanges},
                                                    {"recording", fuzzRecording},
                                                    {"reply", fuzzReply},
                                                    {"key", fuzzKey},
                                                    {"address", fuzzAddress}}};

// Null when there is none of this name.
const Target *findTarget(std::string_view name);

} // namespace aaanc::test::fuzz
