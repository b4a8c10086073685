// Records that are not laid out as asserted. Each case is compiled alone and
// must fail; without a case the file compiles.
#include "aaa_nc/layout.hpp"

struct Record {
    std::uint8_t first;
    std::uint8_t reserved1[3];
    std::uint32_t second;
};

#if defined(FIELD_AT_ANOTHER_OFFSET)
AAA_NC_FIELD(Record, second, 1, 4);
#elif defined(FIELD_OF_ANOTHER_SIZE)
AAA_NC_FIELD(Record, second, 4, 2);
#elif defined(RECORD_OF_ANOTHER_SIZE)
AAA_NC_RECORD(Record, 5);
#else
AAA_NC_FIELD(Record, first, 0, 1);
AAA_NC_FIELD(Record, reserved1, 1, 3);
AAA_NC_FIELD(Record, second, 4, 4);
AAA_NC_RECORD(Record, 8);
#endif
