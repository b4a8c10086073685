// Blocks and replies over all small and all extreme inputs, against oracles
// written another way.
#include "exhaustive/service.hpp"

#include "transport/request.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace aaanc::test
{

namespace
{

// A word as the machine stores it.
std::string word(std::uint32_t value)
{
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

constexpr char kUntouched = '\x5a';

// The block, and what stood in it before.
AaaNcParam usedBlock()
{
    AaaNcParam block;
    std::memset(&block, kUntouched, sizeof block);
    return block;
}

std::string bytesOf(const AaaNcParam &block)
{
    return {reinterpret_cast<const char *>(&block), sizeof block};
}

std::string payloadOf(std::size_t length)
{
    std::string payload(length, '\0');
    std::iota(payload.begin(), payload.end(), '\x11');
    return payload;
}

// A reply that starts with `head`, without a byte to spare; of a long one only
// the first bytes.
std::unique_ptr<char[]> reply(const std::string &head, std::uint32_t length)
{
    const std::size_t size = std::min<std::uint32_t>(length, 8192);
    auto bytes = std::make_unique<char[]>(size);
    head.copy(bytes.get(), size);
    return bytes;
}

constexpr std::array<std::uint32_t, 11> kSentTypes = {0, 1, 5, 19, 21, 22, 24, 29, 30, 31, 63};

std::vector<std::uint32_t> smallAndExtreme(std::uint32_t small)
{
    std::vector<std::uint32_t> numbers(small);
    std::iota(numbers.begin(), numbers.end(), 0U);
    for (const std::uint32_t power : {0x80U, 0x100U, 0x8000U, 0x10000U, 0x80000000U, 0U}) {
        for (const std::uint32_t step : {0xffffffffU, 0U, 1U})
            numbers.push_back(power + step);
    }
    return numbers;
}

} // namespace

TEST(ParamSet, EveryTypeAndOperation)
{
    int inputs = 0;
    const std::string payload = payloadOf(24);
    for (const std::uint32_t type : smallAndExtreme(256)) {
        for (const std::uint32_t oper : smallAndExtreme(256)) {
            ++inputs;
            AaaNcParam block = usedBlock();
            call(aaaNcParamSet, type, oper, 24, payload.data(), block);
            const bool sets = oper == 0 || oper == 1;
            ASSERT_EQ(bytesOf(block), word(type) + word(sets ? 1 : 0) + word(24) + payload +
                                          std::string(1012 - 24, kUntouched))
                << "type " << type << ", operation " << oper;
        }
    }
    RecordProperty("inputs", inputs);
}

TEST(ParamSet, EveryLength)
{
    for (std::uint32_t length = 0; length <= 1012; ++length) {
        const std::string payload = payloadOf(length);
        AaaNcParam block = usedBlock();
        call(aaaNcParamSet, 63, 0, length, payload.data(), block);
        ASSERT_EQ(bytesOf(block), word(63) + word(1) + word(length) + payload +
                                      std::string(1012 - length, kUntouched))
            << "length " << length;
    }
    RecordProperty("inputs", 1013);
}

TEST(CmfSendProc, EveryTypeFlagAndLengthIsSentWhole)
{
    int inputs = 0;
    for (const std::uint32_t type : kSentTypes) {
        for (const std::uint32_t flag : {0U, 1U, 2U, 0x100U, 0x80000000U, 0xffffffffU}) {
            for (std::uint32_t length = 0; length <= 1012; ++length) {
                ++inputs;
                AaaNcParam block = usedBlock();
                block.header = {type, flag, length};
                service = {};
                service.arrived = reply(word(0) + word(0), 8);
                service.reported_length = 8;
                ASSERT_EQ(call(aaaNcCmfSendProc, block), 0);
                const std::array<std::uint32_t, 3> object = {type, flag == 0 ? 4U : 3U, 0};
                ASSERT_EQ(service.object, object);
                ASSERT_EQ(service.parameter, bytesOf(block).substr(0, 12 + length))
                    << "type " << type << ", flag " << flag << ", length " << length;
            }
        }
    }
    RecordProperty("inputs", inputs);
}

namespace
{

// Replies are sent with every length up to some bytes more than a head, and
// around every size that a buffer for them might have.
std::vector<std::uint32_t> replyLengths()
{
    std::vector<std::uint32_t> lengths(48);
    std::iota(lengths.begin(), lengths.end(), 0U);
    for (const std::uint32_t size : {256U, 1012U, 1020U, 1024U, 1032U, 4096U}) {
        for (std::uint32_t length = size - 9; length <= size + 9; ++length)
            lengths.push_back(length);
    }
    return lengths;
}

struct Outcome {
    int result;
    int log_lines;
    int opened;
    int closed;

    friend bool operator==(const Outcome &, const Outcome &) = default;
    friend std::ostream &operator<<(std::ostream &out, const Outcome &outcome)
    {
        return out << "result " << outcome.result << ", " << outcome.log_lines << " lines, opened "
                   << outcome.opened << ", closed " << outcome.closed;
    }
};

Outcome exchange(std::uint32_t result, std::uint32_t length_field, std::uint32_t length,
                 bool null_data)
{
    service = {};
    if (!null_data)
        service.arrived = reply(word(result) + word(length_field), length);
    service.reported_length = length;
    AaaNcParam block{};
    block.header = {5, 1, 4};
    const int got = call(aaaNcCmfSendProc, block);
    return {got, service.log_lines, service.opened, service.closed};
}

// The service's answer counts where a whole head arrived and promises just what
// came behind it. Of a head that lacks a byte, and of no data, no length field
// can be read that would fit; no data but the length of a head is an empty
// reply, which reads as an acceptance. Sums are 32-bit ones.
Outcome expected(std::uint32_t result, std::uint32_t length_field, std::uint32_t length,
                 bool null_data)
{
    const bool fits = !null_data && length >= 8 && length - 8 == length_field;
    const bool is_empty = null_data && length == 8;
    return {fits ? static_cast<int>(result) : 0, fits || is_empty ? 0 : 1, 1, 1};
}

} // namespace

TEST(CmfSendProc, EverySmallReply)
{
    std::vector<std::uint32_t> length_fields = replyLengths();
    for (const std::uint32_t wraps : {0x80000000U, 0xffffffffU}) {
        for (std::uint32_t back = 0; back < 24; ++back)
            length_fields.push_back(wraps - back);
    }
    std::vector<std::uint32_t> lengths = replyLengths();
    lengths.insert(lengths.end(), {0x7fffffffU, 0x80000000U, 0xffffffffU});

    int inputs = 0;
    for (const bool null_data : {false, true}) {
        for (const std::uint32_t length : lengths) {
            for (const std::uint32_t field : length_fields) {
                for (const std::uint32_t result : {0U, 43U, 0x80000000U, 0xffffffffU}) {
                    ++inputs;
                    ASSERT_EQ(exchange(result, field, length, null_data),
                              expected(result, field, length, null_data))
                        << "result " << result << ", length field " << field << ", length "
                        << length << (null_data ? ", no data" : "");
                }
            }
        }
    }
    RecordProperty("inputs", inputs);
}

TEST(CmfSendProc, EveryResult)
{
    const std::vector<std::uint32_t> results = smallAndExtreme(70000);
    for (const std::uint32_t result : results) {
        ASSERT_EQ(exchange(result, 0, 8, false), expected(result, 0, 8, false));
        ASSERT_EQ(exchange(result, 16, 24, false), expected(result, 16, 24, false));
    }
    RecordProperty("inputs", static_cast<int>(2 * results.size()));
}

} // namespace aaanc::test
