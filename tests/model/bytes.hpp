// A record of bytes, zero where nothing is put, numbers in the machine's order.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

namespace aaanc::test::model
{

class Bytes
{
public:
    explicit Bytes(std::size_t size) : bytes_(size, '\0') {}
    Bytes &text(std::size_t offset, const std::string &text)
    {
        bytes_.replace(offset, text.size(), text);
        return *this;
    }
    Bytes &byte(std::size_t offset, std::uint8_t number)
    {
        return put(offset, number);
    }
    Bytes &half(std::size_t offset, std::uint16_t number)
    {
        return put(offset, number);
    }
    Bytes &word(std::size_t offset, std::uint32_t number)
    {
        return put(offset, number);
    }
    const std::string &str() const
    {
        return bytes_;
    }

private:
    template <typename Number> Bytes &put(std::size_t offset, Number number)
    {
        std::memcpy(&bytes_.at(offset), &number, sizeof number);
        return *this;
    }

    std::string bytes_;
};

inline std::uint32_t wordAt(const std::string &bytes, std::size_t offset)
{
    std::uint32_t word = 0;
    std::memcpy(&word, &bytes.at(offset), sizeof word);
    return word;
}

} // namespace aaanc::test::model
