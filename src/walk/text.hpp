// Texts of values, and their copies in records.
#pragma once

#include <cstring>

#include "sysrepo.h"

// The text of a string value; a null one is empty.
inline const char *aaaNcValueText(const sr_val_t &value)
{
    return value.data.string_val != nullptr ? value.data.string_val : "";
}

// Copies text into a zeroed field of `size` bytes, cut so that it stays terminated.
inline void aaaNcTextCopy(char *field, const char *text, std::size_t size)
{
    std::strncpy(field, text, size - 1);
}
