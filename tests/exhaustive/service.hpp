// Functions of the plug-in that are called by themselves, and an AAA service for
// them: it keeps the request and gives one reply.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "harness/heap_watch.hpp"

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

// Calls a function of the plug-in. A test fails where that uses the heap.
template <typename Result, typename... Parameters>
Result call(Result (*function)(Parameters...), std::type_identity_t<Parameters>... arguments)
{
    struct Watch {
        InPlugin plugin;
        ~Watch()
        {
            EXPECT_EQ(plugin.heapUses(), 0U);
        }
    } const watch;
    return function(arguments...);
}

} // namespace aaanc::test
