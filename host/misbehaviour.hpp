// Ways in which the AAA service can be told to misbehave.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cmf_wire.hpp"

namespace aaanc
{

enum class Manner {
    Refuse,      // with a code
    Late,        // the right answer, after a delay
    WrongLength, // an answer whose length field does not fit
    Short,       // an answer that is shorter than its header
    Long,        // an answer that is longer than the plug-in's buffer
    Empty,       // an answer of no bytes
    Null,        // null data, said to be 8 bytes
    Undecodable, // a packet that is no answer
    Silent,      // no answer
    Close,       // the connection is closed after the request
    CloseBefore, // the connection is closed before the request is read
    Away,        // nobody listens, from this request on
};

// A rule. Where it names neither a request nor a type, it is for all requests.
struct Misbehaviour {
    std::optional<std::size_t> request; // the n-th, counted from 1
    std::optional<std::uint32_t> type;  // of the message
    Manner manner = Manner::Silent;
    std::uint32_t code = 0;             // of Refuse
    std::chrono::milliseconds delay{0}; // of Late
    std::string text;                   // the rule as it was written, without its condition
};

// Reads "[request N: | type T: ]MANNER", as in "request 3: refuse 43", "type 30:
// silent", "late 2.5". Throws std::invalid_argument that says what is wrong.
Misbehaviour parseMisbehaviour(std::string_view text);

// What a user is told of the manners, a line each.
std::string mannersHelp();

// Whether a request that is met so is looked at: what it says is kept if it is accepted.
bool isLookedAt(Manner manner);

// The packet that is sent for a reply, spoilt in this manner.
Bytes packSpoilt(const Parameter &reply, Manner manner);

} // namespace aaanc
