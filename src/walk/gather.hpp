// Gathering the changed leaves of a list entry into one record.
//
// A row of a handler's table says which leaf goes where in the record, and how it
// is stored. A new leaf is one row there and one member of the record.
// Tables assert that their fields have the size that is stored.
#pragma once

#include <cstddef>
#include <cstdint>

#include "walk/walk.hpp"

// A name with its length, so that most rows are passed over without a look at
// their text.
struct AaaNcName {
    const char *text = "";
    std::size_t length = SIZE_MAX; // of no name: it matches none

    constexpr AaaNcName() = default;
    template <std::size_t N> constexpr AaaNcName(const char (&name)[N]) : text(name), length(N - 1)
    {
    }
};

// The same leaf in the two lists that one table serves, which of them is told by
// an AaaNcTwin. A single name is that of both.
enum AaaNcTwin : std::uint8_t { AAA_NC_FIRST, AAA_NC_SECOND };

struct AaaNcNames {
    AaaNcName of[2]; // by AaaNcTwin

    template <std::size_t N> constexpr AaaNcNames(const char (&both)[N]) : of{both, both} {}
    constexpr AaaNcNames(AaaNcName first, AaaNcName second) : of{first, second} {}
};

struct AaaNcGather;
struct AaaNcLeaf;

// Stores a leaf's value. A result other than 0 ends the walk.
using AaaNcStore = int(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value);

struct AaaNcLeaf {
    AaaNcNames names;
    std::uint32_t seen; // bits that tell that it was there
    AaaNcStore *store;
    std::size_t offset; // of the field in the record
    std::size_t size;   // of the field
};

// Offset and size of a leaf's field.
#define AAA_NC_IN(record, member) offsetof(record, member), sizeof(record::member)

// The bits of all leaves of a table.
template <std::size_t N> constexpr std::uint32_t aaaNcSeenBits(const AaaNcLeaf (&leaves)[N])
{
    std::uint32_t bits = 0;
    for (const AaaNcLeaf &leaf : leaves) {
        bits |= leaf.seen;
    }
    return bits;
}

// A walk that gathers.
struct AaaNcGather : AaaNcWalk {
    char *record;           // being filled
    std::uint32_t seen = 0; // bits of the leaves that it holds

    AaaNcGather(const AaaNcHandler &theHandler, void *theRecord)
        : AaaNcWalk{theHandler}, record(static_cast<char *>(theRecord))
    {
    }
};

// The row of leaf `name` in the `count` rows of `leaves`, or null.
const AaaNcLeaf *aaaNcLeafFind(const AaaNcLeaf *leaves, std::size_t count, AaaNcTwin twin,
                               const char *name);

template <std::size_t N>
const AaaNcLeaf *aaaNcLeafFind(const AaaNcLeaf (&leaves)[N], AaaNcTwin twin, const char *name)
{
    return aaaNcLeafFind(leaves, N, twin, name);
}

// Stores the change's value as `leaf` says. A result other than 0 ends the walk.
int aaaNcLeafStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const AaaNcChange &change);

// Ways to store a value: as text, cut to its field, and as 32 bits, whatever the
// leaf's own width.
AaaNcStore aaaNcTextStore;
AaaNcStore aaaNcUint8Store;
AaaNcStore aaaNcUint16Store;

// Whether the fields of all leaves that `store` stores take `size` bytes.
template <std::size_t N>
constexpr bool aaaNcFieldsFit(const AaaNcLeaf (&leaves)[N], AaaNcStore *store, std::size_t size)
{
    for (const AaaNcLeaf &leaf : leaves) {
        if (leaf.store == store && leaf.size != size) {
            return false;
        }
    }
    return true;
}

// Whether those of all numbers take the 32 bits that are stored.
template <std::size_t N> constexpr bool aaaNcNumbersFit(const AaaNcLeaf (&leaves)[N])
{
    return aaaNcFieldsFit(leaves, aaaNcUint8Store, sizeof(std::uint32_t)) &&
           aaaNcFieldsFit(leaves, aaaNcUint16Store, sizeof(std::uint32_t));
}
