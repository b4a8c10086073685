// The tests' table of payload records and the host program's, each written down
// on its own, agree on every field: its name, its place and its kind.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include "harness/payload.hpp"
#include "messages.hpp"

namespace aaanc::test
{

namespace
{

template <typename Known> std::string asText(const Known &field, bool is_text)
{
    return fmt::format("{} {} {} {}", field.name, field.offset, field.size,
                       is_text ? "text" : "number");
}

std::vector<std::string> fieldsOf(const PayloadRecord &record)
{
    std::vector<std::string> fields;
    for (const Field &field : record.fields) {
        fields.push_back(asText(field, field.kind == FieldKind::Text));
    }
    return fields;
}

std::vector<std::string> fieldsOf(const MessageLayout &message)
{
    std::vector<std::string> fields;
    for (const FieldLayout &field : message.fields) {
        if (field.kind != aaanc::FieldKind::Reserved) {
            fields.push_back(asText(field, field.kind == aaanc::FieldKind::Text));
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
