// What the two lists of server groups share: their list keys, and all of their
// handlers but the names and the function for a change.
#pragma once

#include "walk/walk.hpp"

struct AaaNcGroupKey {
    char type[33]{};            // serverGroupType, NUL-padded, cut to 32 characters
    const char *name = nullptr; // serverGroupName, inside the change's xpath
};

// Reads both keys of the change's entry. Returns 0 or, logged, 5.
int aaaNcGroupKeyGet(const AaaNcWalk &walk, const AaaNcChange &change, AaaNcGroupKey &key);

// The handler of either list. The texts are the same in both, on purpose.
constexpr AaaNcHandler aaaNcGroupHandler(const char *confChanges, const char *leafChangesParse,
                                         const char *oneLeafChangeParse,
                                         int (*change)(AaaNcWalk &walk, const AaaNcChange &change))
{
    return {
        {confChanges, leafChangesParse, oneLeafChangeParse, nullptr},
        {AAA_NC_LOG_TEXT("Config server group: path %s, notify event %d."),
         AAA_NC_LOG_TEXT("Server group xpath %s, type %d, change oper %d."),
         AAA_NC_LOG_TEXT("Receive node name %s."), AAA_NC_NO_LEAF_NAME},
        AAA_NC_NO_LEAF,
        AAA_NC_BAD_CHANGE,
        {1},
        change,
        nullptr,
    };
}
