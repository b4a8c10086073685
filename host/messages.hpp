// The requests of the AAA service: what each message type means, and the fields
// of its payload. All that decodes, keeps or prints a request works from this
// table.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace aaanc
{

// What comes before the payload of a parameter block: message type, 1 for set
// or 0 for undo, length of the payload; 32 bits each.
constexpr std::size_t kHeaderSize = 12;

enum class FieldKind {
    Text,     // NUL-terminated
    Number,   // unsigned; its size is 1, 2 or 4 bytes
    Reserved, // zero
};

enum class FieldRole {
    Plain,
    Key,    // tells the object that a request is about
    Secret, // a shared key
};

// The meaning of a number, or of one of its bits.
struct NumberMeaning {
    std::uint32_t number;
    std::string_view meaning;
};

struct FieldLayout {
    std::string_view name; // empty for reserved bytes
    std::size_t offset;    // in the payload
    std::size_t size;      // in bytes
    FieldKind kind = FieldKind::Text;
    FieldRole role = FieldRole::Plain;
    std::span<const NumberMeaning> meanings = {};
    bool bits = false; // the meanings are those of bits
};

struct MessageLayout {
    std::uint32_t type;
    std::size_t length; // of the payload
    std::string_view meaning;
    std::span<const FieldLayout> fields; // without gaps, in order
};

// Null for a type that is never sent.
const MessageLayout *findMessage(std::uint32_t type);

struct Field {
    const FieldLayout *layout;
    std::string text;         // of a Text
    std::uint32_t number = 0; // of a Number
};

struct Request {
    std::uint32_t type = 0;
    std::uint32_t set = 0; // 0 undo, any other number set
    std::uint32_t length = 0;
    const MessageLayout *layout = nullptr; // null for an unknown type
    std::vector<Field> fields;             // without the reserved ones
    std::vector<std::string> problems;     // what is not as it should be, for a reader
    bool fits = true;                      // the type is known, and the length is right for it
};

// The 32-bit word at `offset`, which is there.
std::uint32_t wordAt(std::span<const std::byte> bytes, std::size_t offset, std::endian order);

// Decodes a parameter block. None when it is shorter than its header. Of a payload
// that is too short, there are the fields that are whole, and what is left of a text.
std::optional<Request> decodeRequest(std::span<const std::byte> block,
                                     std::endian order = std::endian::native);

// What does not fit a request in the first two words of its object record: message
// type and operation.
std::vector<std::string> objectProblems(const Request &request, std::uint32_t type,
                                        std::uint32_t operation);

// A request by design without meaning: it is accepted and changes nothing.
bool isWithoutMeaning(const Request &request);

// The value as text: printable, and with the meaning of a number.
std::string fieldText(const Field &field);

// Whether it is the type of a group in a method list, whose name comes next.
bool isGroupType(const FieldLayout &field);
// What the type of a group means in a method list, "unknown" for nothing; the two
// kinds number the protocols the other way round.
std::string_view groupTypeMeaning(const Request &method_list, std::uint32_t type);

// Whether byte `offset` of a parameter block of this type is part of a shared
// key. Of a type that is unknown (null), every payload byte might be.
bool isSecret(const MessageLayout *layout, std::size_t offset);

} // namespace aaanc
