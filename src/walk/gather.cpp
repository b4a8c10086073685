#include "walk/gather.hpp"

#include <cstring>

#include "walk/text.hpp"

const AaaNcLeaf *aaaNcLeafFind(const AaaNcLeaf *leaves, std::size_t count, AaaNcTwin twin,
                               const char *name)
{
    const std::size_t length = std::strlen(name);
    for (const AaaNcLeaf *leaf = leaves; leaf != leaves + count; ++leaf) {
        const AaaNcName &known = leaf->names.of[twin];
        if (known.length == length && std::memcmp(known.text, name, length) == 0) {
            return leaf;
        }
    }
    return nullptr;
}

int aaaNcLeafStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const AaaNcChange &change)
{
    gather.seen |= leaf.seen;
    return leaf.store(gather, leaf, *change.value);
}

int aaaNcTextStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value)
{
    aaaNcTextCopy(gather.record + leaf.offset, aaaNcValueText(value), leaf.size);
    return 0;
}

// Every number that is gathered takes 32 bits in its record.
static int numberStore(AaaNcGather &gather, const AaaNcLeaf &leaf, std::uint32_t number)
{
    std::memcpy(gather.record + leaf.offset, &number, sizeof(number));
    return 0;
}

int aaaNcUint8Store(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value)
{
    return numberStore(gather, leaf, value.data.uint8_val);
}

int aaaNcUint16Store(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value)
{
    return numberStore(gather, leaf, value.data.uint16_val);
}
