// An AAA service for functions of the plug-in that are called by themselves: it
// keeps the request and gives one reply.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace aaanc::test
{

struct Service {
    // The reply; null data where `arrived` is null. The length that is reported
    // need not be that of what arrived.
    std::unique_ptr<char[]> arrived;
    std::uint32_t reported_length = 0;

    // What the plug-in did.
    std::array<std::uint32_t, 3> object{};
    std::string parameter;
    int opened = 0;
    int closed = 0;
    int log_lines = 0;
};

extern Service service;

} // namespace aaanc::test
