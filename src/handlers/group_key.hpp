// What the two lists of server groups share: their list keys.
#pragma once

#include "walk/walk.hpp"

struct AaaNcGroupKey {
    char type[33]{};            // serverGroupType, NUL-padded, cut to 32 characters
    const char *name = nullptr; // serverGroupName, inside the change's xpath
};

// Reads both keys of the change's entry. Returns 0 or, logged, 5.
int aaaNcGroupKeyGet(const AaaNcWalk &walk, const AaaNcChange &change, AaaNcGroupKey &key);
