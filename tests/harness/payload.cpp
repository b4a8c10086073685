#include "payload.hpp"

#include "trace_text.hpp"

#include <cstring>

namespace aaanc::test
{

namespace
{

constexpr FieldKind kNumber = FieldKind::Number;
constexpr FieldKind kText = FieldKind::Text;

const std::vector<PayloadRecord> &records()
{
    static const std::vector<PayloadRecord> kRecords = {
        // AAA domain
        {0, 68, {{"domainName", 0, 64, kText}, {"bSecondConfirm", 64, 4, kNumber}}},
        // domain method list
        {1,
         244,
         {{"domainName", 0, 64, kText},
          {"methodKind", 64, 4, kNumber},
          {"type", 68, 4, kNumber},
          {"accountStage", 72, 4, kNumber},
          {"groups[0].groupType", 80, 4, kNumber},
          {"groups[0].groupName", 84, 36, kText},
          {"groups[1].groupType", 120, 4, kNumber},
          {"groups[1].groupName", 124, 36, kText},
          {"groups[2].groupType", 160, 4, kNumber},
          {"groups[2].groupName", 164, 36, kText},
          {"groups[3].groupType", 200, 4, kNumber},
          {"groups[3].groupName", 204, 36, kText}}},
        // accounting interval
        {5, 4, {{"accountInterval", 0, 4, kNumber}}},
        // source interface
        {19, 73, {{"srcInterfaceName", 0, 40, kText}, {"vrfName", 40, 33, kText}}},
        // start-failure policy
        {21, 1, {{"startFailType", 0, 1, kNumber}}},
        // RADIUS server group
        {22, 33, {{"groupName", 0, 33, kText}}},
        // RADIUS server group VRF binding
        {24, 108, {{"groupName", 5, 33, kText}, {"vrfName", 56, 33, kText}}},
        // TACACS server group
        {29, 33, {{"groupName", 0, 33, kText}}},
        // TACACS server
        {30,
         520,
         {{"groupName", 4, 33, kText},
          {"Addr", 37, 48, kText},
          {"family", 85, 1, kNumber},
          {"Port", 88, 4, kNumber},
          {"plainKey", 92, 128, kText},
          {"keyType", 220, 4, kNumber},
          {"cipherKey", 224, 260, kText},
          {"priority", 484, 4, kNumber}}},
        // TACACS server group VRF binding
        {31, 84, {{"groupName", 5, 33, kText}, {"vrfName", 48, 33, kText}}},
        // RADIUS server
        {63,
         492,
         {{"groupName", 0, 33, kText},
          {"Addr", 33, 48, kText},
          {"family", 81, 1, kNumber},
          {"authPort", 84, 4, kNumber},
          {"acctPort", 88, 4, kNumber},
          {"setFlag", 92, 2, kNumber},
          {"priority", 96, 4, kNumber},
          {"plainKey", 100, 128, kText},
          {"keyType", 228, 4, kNumber},
          {"cipherKey", 232, 260, kText}}},
    };
    return kRecords;
}

std::string shown(const Field &field, std::string_view bytes)
{
    if (field.kind == FieldKind::Number)
        return std::to_string(getNumber(bytes, field.offset, field.size));
    std::string_view text = bytes.substr(field.offset, field.size);
    const std::size_t last = text.find_last_not_of('\0');
    text = text.substr(0, last == std::string_view::npos ? 0 : last + 1);
    std::string line;
    appendQuoted(line, text);
    return line;
}

} // namespace

const Field *PayloadRecord::field(std::string_view name) const
{
    for (const Field &known : fields)
        if (name == known.name)
            return &known;
    return nullptr;
}

const PayloadRecord *payloadRecord(std::uint32_t message_type)
{
    for (const PayloadRecord &known : records())
        if (known.message_type == message_type)
            return &known;
    return nullptr;
}

RequestHeader readHeader(std::string_view block)
{
    return {getNumber(block, 0, 4), getNumber(block, 4, 4), getNumber(block, 8, 4)};
}

std::string headerBytes(const RequestHeader &header)
{
    std::string bytes(kHeaderSize, '\0');
    putNumber(bytes, 0, 4, header.message_type);
    putNumber(bytes, 4, 4, header.do_flag);
    putNumber(bytes, 8, 4, header.length);
    return bytes;
}

void putNumber(std::string &bytes, std::size_t offset, std::size_t size, std::uint32_t value)
{
    const auto byte = static_cast<std::uint8_t>(value);
    const auto half = static_cast<std::uint16_t>(value);
    const void *source = &value;
    if (size == sizeof byte)
        source = &byte;
    else if (size == sizeof half)
        source = &half;
    std::memcpy(bytes.data() + offset, source, size);
}

std::uint32_t getNumber(std::string_view bytes, std::size_t offset, std::size_t size)
{
    std::uint8_t byte = 0;
    std::uint16_t half = 0;
    std::uint32_t value = 0;
    if (size == sizeof byte) {
        std::memcpy(&byte, bytes.data() + offset, size);
        return byte;
    }
    if (size == sizeof half) {
        std::memcpy(&half, bytes.data() + offset, size);
        return half;
    }
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

std::vector<std::string> payloadDifferences(const PayloadRecord &record, std::string_view expected,
                                            std::string_view actual)
{
    std::vector<std::string> differences;
    std::vector<bool> covered(record.size, false);
    for (const Field &field : record.fields) {
        for (std::size_t at = 0; at < field.size; ++at)
            covered[field.offset + at] = true;
        if (expected.substr(field.offset, field.size) != actual.substr(field.offset, field.size))
            differences.push_back(std::string(field.name) + " is " + shown(field, actual) +
                                  ", expected " + shown(field, expected));
    }
    for (std::size_t at = 0; at < record.size; ++at)
        if (!covered[at] && actual[at] != '\0')
            differences.push_back("reserved byte " + std::to_string(at) + " is not zero");
    return differences;
}

} // namespace aaanc::test
