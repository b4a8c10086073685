// Gathering the changed leaves of a list entry into one record.
//
// A row of a handler's table says which leaf goes where in the record, and how it
// is stored. A new leaf is one row there and one member of the record.
// A row whose field has another size than what is stored does not compile.
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

// A way to store a leaf's value.
struct AaaNcStore {
    // A result other than 0 ends the walk.
    int (*function)(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value);
    std::size_t size = 0; // of the field that it fills; 0: it fills none
};

// Of a store that fills a field of whatever size.
inline constexpr std::size_t AAA_NC_ANY_SIZE = SIZE_MAX;

void aaaNcFieldIsNotOfTheSizeStored(); // never defined

struct AaaNcLeaf {
    AaaNcNames names;
    std::uint32_t seen; // bits that tell that it was there
    decltype(AaaNcStore::function) store;
    std::size_t offset; // of the field in the record
    std::size_t size;   // of the field

    constexpr AaaNcLeaf(AaaNcNames theNames, std::uint32_t theSeen, AaaNcStore theStore,
                        std::size_t theOffset = 0, std::size_t theSize = 0)
        : names(theNames), seen(theSeen), store(theStore.function), offset(theOffset), size(theSize)
    {
        if (theStore.size == AAA_NC_ANY_SIZE ? size == 0 : theStore.size != size) {
            aaaNcFieldIsNotOfTheSizeStored();
        }
    }
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
int aaaNcTextStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value);
int aaaNcUint8Store(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value);
int aaaNcUint16Store(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value);

inline constexpr AaaNcStore AAA_NC_AS_TEXT = {aaaNcTextStore, AAA_NC_ANY_SIZE};
inline constexpr AaaNcStore AAA_NC_AS_UINT8 = {aaaNcUint8Store, sizeof(std::uint32_t)};
inline constexpr AaaNcStore AAA_NC_AS_UINT16 = {aaaNcUint16Store, sizeof(std::uint32_t)};
