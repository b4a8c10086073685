// The tests' table of payload records and the host program's, each written down
// on its own, agree on every field: its name, its place and its kind.
#include <gtest/gtest.h>

#include "harness/payload.hpp"
#include "messages.hpp"

namespace aaanc::test
{

namespace
{

std::vector<std::string> fieldsOf(const PayloadRecord &record)
{
    std::vector<std::string> fields;
    for (const Field &field : record.fields) {
        fields.push_back(std::string(field.name) + ' ' + std::to_string(field.offset) + ' ' +
                         std::to_string(field.size) +
                         (field.kind == FieldKind::Text ? " text" : " number"));
    }
    return fields;
}

std::vector<std::string> fieldsOf(const MessageLayout &message)
{
    std::vector<std::string> fields;
    for (const FieldLayout &field : message.fields) {
        if (field.kind != aaanc::FieldKind::Reserved) {
            fields.push_back(std::string(field.name) + ' ' + std::to_string(field.offset) + ' ' +
                             std::to_string(field.size) +
                             (field.kind == aaanc::FieldKind::Text ? " text" : " number"));
        }
    }
    return fields;
}

TEST(Layouts, OfTheTestsAreThoseOfTheHostProgram)
{
    std::size_t types = 0;
    for (std::uint32_t type = 0; type < 256; ++type) {
        const PayloadRecord *record = payloadRecord(type);
        const MessageLayout *message = findMessage(type);
        ASSERT_EQ(record == nullptr, message == nullptr) << "type " << type;
        if (record == nullptr) {
            continue;
        }
        ++types;
        EXPECT_EQ(record->size, message->length) << "type " << type;
        EXPECT_EQ(fieldsOf(*record), fieldsOf(*message)) << "type " << type;
    }
    EXPECT_EQ(types, 11U);
}

} // namespace

} // namespace aaanc::test
