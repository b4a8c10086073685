// Tables of leaves whose fields are not of the size that is stored. Each case is
// compiled alone and must fail; without a case the file compiles.
#include "handlers/server.hpp"

struct Record {
    AaaNcServerName name;
    AaaNcServerKey key;
    std::uint32_t number;
    std::uint8_t small;
};

int nothingStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value);

constexpr AaaNcLeaf kLeaves[] = {
    {"text", 0, AAA_NC_AS_TEXT, AAA_NC_IN(Record, name.groupName)},
    {"nothing", 0, {nothingStore}},
    {"addr", 1, AAA_NC_AS_ADDR, AAA_NC_IN(Record, name)},
    {"keyType", 2, AAA_NC_AS_KEY_TYPE, AAA_NC_IN(Record, key)},
    {"key", 4, AAA_NC_AS_KEY, AAA_NC_IN(Record, key)},
    {"byte", 8, AAA_NC_AS_UINT8, AAA_NC_IN(Record, number)},
    {"port", 16, AAA_NC_AS_UINT16, AAA_NC_IN(Record, number)},
#if defined(BYTE_INTO_ONE_BYTE)
    {"more", 32, AAA_NC_AS_UINT8, AAA_NC_IN(Record, small)},
#elif defined(PORT_INTO_ONE_BYTE)
    {"more", 32, AAA_NC_AS_UINT16, AAA_NC_IN(Record, small)},
#elif defined(ADDRESS_INTO_ITS_TEXT)
    {"more", 32, AAA_NC_AS_ADDR, AAA_NC_IN(Record, name.Addr)},
#elif defined(KEY_TYPE_INTO_A_NUMBER)
    {"more", 32, AAA_NC_AS_KEY_TYPE, AAA_NC_IN(Record, key.keyType)},
#elif defined(TEXT_WITHOUT_A_FIELD)
    {"more", 32, AAA_NC_AS_TEXT},
#elif defined(FIELD_WITHOUT_A_STORE)
    {"more", 32, {nothingStore}, AAA_NC_IN(Record, number)},
#elif defined(KEY_INTO_ITS_TEXT)
    {"more", 32, AAA_NC_AS_KEY, AAA_NC_IN(Record, key.plainKey)},
#endif
};
