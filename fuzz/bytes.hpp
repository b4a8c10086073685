// Takes an input of the fuzzer apart. An input that has run out gives zeros, so
// that every input is a whole one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace aaanc::test::fuzz
{

class Bytes
{
public:
    Bytes(const std::uint8_t *data, std::size_t size) : at_(data), end_(data + size) {}

    bool empty() const
    {
        return at_ == end_;
    }
    std::uint8_t byte()
    {
        return empty() ? std::uint8_t{0} : *at_++;
    }
    // 0 to `limit` - 1; `limit` is 1 to 256.
    std::size_t below(std::size_t limit)
    {
        return byte() % limit;
    }
    // Four bytes, the lowest first, whatever the machine's order.
    std::uint32_t word()
    {
        std::uint32_t value = 0;
        for (unsigned shift = 0; shift < 32; shift += 8)
            value |= std::uint32_t{byte()} << shift;
        return value;
    }
    template <typename T, std::size_t N> const T &oneOf(const T (&choices)[N])
    {
        return choices[below(N)];
    }
    // A length in one byte, then so many bytes, as a C string can hold them.
    std::string text()
    {
        return text(byte());
    }
    // All that is left, as above.
    std::string rest()
    {
        return text(static_cast<std::size_t>(end_ - at_));
    }

private:
    std::string text(std::size_t length)
    {
        std::string result;
        while (result.size() < length && !empty()) {
            const std::uint8_t next = byte();
            result += next == 0 ? '0' : static_cast<char>(next);
        }
        return result;
    }

    const std::uint8_t *at_;
    const std::uint8_t *end_;
};

} // namespace aaanc::test::fuzz
