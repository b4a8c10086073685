// The payload records on the wire, field by field: a table of its own, so that
// tests do not inherit a mistake of the plug-in's declarations. Numbers are in
// the machine's byte order; a byte that no field covers is zero.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace aaanc::test
{

enum class FieldKind { Number, Text };

struct Field {
    const char *name;
    std::size_t offset;
    std::size_t size;
    FieldKind kind;
};

struct PayloadRecord {
    std::uint32_t message_type;
    std::size_t size;
    std::vector<Field> fields;

    // Null when there is no such field.
    const Field *field(std::string_view name) const;
};

// Null for a message type that is never sent.
const PayloadRecord *payloadRecord(std::uint32_t message_type);

// The bytes of a request's parameter block.
inline constexpr std::size_t kHeaderSize = 12;

struct RequestHeader {
    std::uint32_t message_type = 0;
    std::uint32_t do_flag = 0; // 1 set, 0 undo
    std::uint32_t length = 0;
};

RequestHeader readHeader(std::string_view block);
std::string headerBytes(const RequestHeader &header);

// Writes a number of 1, 2 or 4 bytes at `offset`.
void putNumber(std::string &bytes, std::size_t offset, std::size_t size, std::uint32_t value);
std::uint32_t getNumber(std::string_view bytes, std::size_t offset, std::size_t size);

// Where two payloads of one record differ, for a reader: a line a field, and a
// line a byte that no field covers.
std::vector<std::string> payloadDifferences(const PayloadRecord &record, std::string_view expected,
                                            std::string_view actual);

} // namespace aaanc::test
