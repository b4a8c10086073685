// Compile-time check of a record's layout.
//
// Records are exchanged with another process byte for byte. Integers are in the
// device's own byte order, every byte that is not named holds zero, and every
// reserved range is a member of its own, so that nothing is left to padding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

// `member` of `record` lies at `offset` and takes `size` bytes.
#define AAA_NC_FIELD(record, member, offset, size)                                                 \
    static_assert(offsetof(record, member) == (offset) && sizeof(record::member) == (size),        \
                  #record "::" #member " is not where the AAA service reads it")

// `record` takes `size` bytes and can be copied raw.
#define AAA_NC_RECORD(record, size)                                                                \
    static_assert(sizeof(record) == (size) && std::is_trivially_copyable_v<record> &&              \
                      std::is_standard_layout_v<record>,                                           \
                  #record " is not the record that the AAA service reads")
