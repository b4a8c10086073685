// Random numbers that are the same on every target: a fixed engine, and nothing
// of the library's distributions.
//
// The order in which arguments are worked out is not fixed, so a call never
// takes two random numbers as its arguments.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace aaanc::test::model
{

class Random
{
public:
    // The source of scenario number `index` of a run.
    Random(std::uint64_t seed, std::uint64_t index)
        : engine_(seed * 0x9e3779b97f4a7c15U + index * 0xd1342543de82ef95U + 1)
    {
    }
    // 0 to `limit` - 1; `limit` is above 0.
    std::uint32_t below(std::uint32_t limit)
    {
        return static_cast<std::uint32_t>((engine_() >> 32U) % limit);
    }
    std::uint32_t between(std::uint32_t low, std::uint32_t high)
    {
        return low + below(high - low + 1);
    }
    std::uint32_t word()
    {
        return static_cast<std::uint32_t>(engine_() >> 32U);
    }
    bool percent(std::uint32_t chance)
    {
        return below(100) < chance;
    }
    template <typename T> const T &oneOf(const std::vector<T> &choices)
    {
        return choices[below(static_cast<std::uint32_t>(choices.size()))];
    }

private:
    std::mt19937_64 engine_;
};

} // namespace aaanc::test::model
