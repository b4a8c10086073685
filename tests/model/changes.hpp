// Changes as edits and disturbances handle them.
#pragma once

#include "../harness/scenario.hpp"

#include <string>

namespace aaanc::test::model
{

inline constexpr std::uint32_t kCreated = 0;
inline constexpr std::uint32_t kModified = 1;
inline constexpr std::uint32_t kDeleted = 2;

inline std::uint32_t size32(std::size_t size)
{
    return static_cast<std::uint32_t>(size);
}

// The value that counts for the operation.
inline std::optional<Value> &chosen(Change &change)
{
    return change.oper == kDeleted ? change.old_value : change.new_value;
}

inline Value valueAt(const std::string &xpath, Value value)
{
    value.xpath = xpath;
    return value;
}

// A change with the value that counts, and no other.
inline Change makeChange(std::uint32_t oper, const Value &value)
{
    Change change;
    change.oper = oper;
    chosen(change) = value;
    return change;
}

} // namespace aaanc::test::model
