// A target of fuzzing: makes of an input whatever it stands for, plays it, and
// says what is wrong; nothing when all is well.
#pragma once

#include "bytes.hpp"

#include <string_view>
#include <vector>

namespace aaanc::test::fuzz
{

struct Target {
    std::string_view name;
    std::string (*run)(Bytes bytes);
};

// Those that are linked in.
const std::vector<Target> &allTargets();

// Null when there is none of this name.
const Target *findTarget(std::string_view name);

} // namespace aaanc::test::fuzz
