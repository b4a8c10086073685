// aaanc decode: dumps of every type, in every form and both byte orders.
#include <algorithm>
#include <filesystem>
#include <map>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "bad_cases.hpp"
#include "dump_reader.hpp"
#include "hex.hpp"
#include "messages.hpp"
#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

using Json = nlohmann::ordered_json;

Json decoded(std::vector<std::string> arguments, int status = 0)
{
    arguments.insert(arguments.begin(), {"decode", "--json", "--hex", "--show-keys"});
    const Outcome outcome = runAaanc(arguments);
    EXPECT_EQ(outcome.status, status) << outcome.errors;
    return Json::parse(outcome.output);
}

// The fields that the comments of an annotated dump tell, as "NAME VALUE". Those
// of the two headers are no fields.
std::vector<std::string> annotatedFields(const std::string &text)
{
    std::vector<std::string> fields;
    for (const std::string &line : lines(text.substr(text.find("parameter\n")))) {
        const std::size_t comment = line.find("# ");
        const std::string field = comment == std::string::npos ? "" : line.substr(comment + 2);
        const bool header = field.starts_with("eMsgType") || field.starts_with("bDoFlag") ||
                            field.starts_with("length");
        if (!field.empty() && !header && field != "reserved") {
            fields.push_back(field.find(' ') == std::string::npos ? field + " " : field);
        }
    }
    return fields;
}

std::vector<std::string> fieldsOf(const Json &record)
{
    std::vector<std::string> fields;
    for (const auto &[name, value] : record["fields"].items()) {
        fields.push_back(name.substr(name.find('.') + 1) + " " +
                         (value.is_string() ? value.get<std::string>() : value.dump()));
    }
    return fields;
}

class GoldenDump : public testing::TestWithParam<std::string>
{
};

TEST_P(GoldenDump, IsDecodedAsItIsAnnotated)
{
    const std::string file = std::string(AAANC_GOLDEN) + "/" + GetParam() + ".hex";
    const std::string order = GetParam().substr(GetParam().rfind('.') + 1);
    const std::string text = readText(file);
    const Json found = decoded({file});
    EXPECT_EQ(found["byte_order"], order);
    EXPECT_EQ(fieldsOf(found), annotatedFields(text));
    EXPECT_EQ(found["operation"], text.find("bDoFlag set") != std::string::npos ? "set" : "undo");
    EXPECT_EQ(found["problems"], Json::array());
    EXPECT_EQ(decoded({"--order", order, file}), found);

    // The payload alone.
    const ScratchDirectory scratch;
    const std::string hex = found["hex"];
    const std::string payload = scratch.write("payload", hex.substr(2 * kHeaderSize));
    const Json alone =
        decoded({"--type", std::to_string(found["type"].get<int>()), "--order", order, payload});
    EXPECT_EQ(alone["fields"], found["fields"]);
}

// Every byte of the block is made wrong in turn: where it should be zero, that is
// told, for that byte.
TEST_P(GoldenDump, TellsEachByteThatIsNotZero)
{
    const Dump dump =
        readDump("golden", readText(std::string(AAANC_GOLDEN) + "/" + GetParam() + ".hex"));
    const auto order = GetParam().ends_with(".big") ? std::endian::big : std::endian::little;
    const std::optional<Request> whole = decodeRequest(dump.bytes, order);
    ASSERT_TRUE(whole && whole->layout != nullptr);
    for (const FieldLayout &field : whole->layout->fields) {
        if (field.kind == FieldKind::Number) {
            continue;
        }
        const std::byte *begin = dump.bytes.data() + kHeaderSize + field.offset;
        const bool text = field.kind == FieldKind::Text;
        const auto end =
            static_cast<std::size_t>(std::find(begin, begin + field.size, std::byte{0}) - begin);
        // The byte at the terminator's place may be one character more.
        for (std::size_t i = text ? end + 1 : 0; i < field.size; ++i) {
            Bytes spoilt = dump.bytes;
            spoilt[kHeaderSize + field.offset + i] = std::byte{0x7f};
            const std::optional<Request> request = decodeRequest(spoilt, order);
            ASSERT_EQ(request->problems.size(), 1U);
            EXPECT_TRUE(request->problems[0].starts_with(
                "byte " + std::to_string(field.offset + i) + " of the payload ("));
        }
    }
}

// Every number that stands for something is given a value that stands for nothing.
TEST_P(GoldenDump, TellsEachNumberThatMeansNothing)
{
    const Dump dump =
        readDump("golden", readText(std::string(AAANC_GOLDEN) + "/" + GetParam() + ".hex"));
    const auto order = GetParam().ends_with(".big") ? std::endian::big : std::endian::little;
    const std::optional<Request> whole = decodeRequest(dump.bytes, order);
    for (const FieldLayout &field : whole->layout->fields) {
        if (field.meanings.empty() && !isGroupType(field)) {
            continue;
        }
        Bytes spoilt = dump.bytes;
        const std::size_t last = order == std::endian::big ? field.size - 1 : 0;
        spoilt[kHeaderSize + field.offset + last] = std::byte{99}; // 0x63
        const std::string name(field.name);
        EXPECT_EQ(decodeRequest(spoilt, order)->problems,
                  std::vector{field.bits ? name + " has bits that mean nothing: 0x03"
                                         : name + " is 99, which means nothing"});
    }
}

// Of a payload that ends too early, all is told that is there.
TEST_P(GoldenDump, IsDecodedAsFarAsItGoes)
{
    const Dump dump =
        readDump("golden", readText(std::string(AAANC_GOLDEN) + "/" + GetParam() + ".hex"));
    const auto order = GetParam().ends_with(".big") ? std::endian::big : std::endian::little;
    const std::optional<Request> whole = decodeRequest(dump.bytes, order);
    for (std::size_t size = 0; size < whole->length; ++size) {
        const std::optional<Request> cut =
            decodeRequest(std::span(dump.bytes).first(kHeaderSize + size), order);
        EXPECT_EQ(cut->problems.at(0), "the length is " + std::to_string(whole->length) + ", but " +
                                           std::to_string(size) + " payload bytes follow");
        std::size_t count = 0;
        for (const Field &field : whole->fields) {
            const FieldLayout &layout = *field.layout;
            const bool text = layout.kind == FieldKind::Text;
            if (layout.offset + (text ? 1 : layout.size) > size) {
                break;
            }
            ASSERT_LT(count, cut->fields.size());
            EXPECT_EQ(cut->fields[count].number, field.number);
            EXPECT_EQ(cut->fields[count].text, field.text.substr(0, size - layout.offset));
            ++count;
        }
        EXPECT_EQ(cut->fields.size(), count);
    }
}

INSTANTIATE_TEST_SUITE_P(All, GoldenDump, testing::ValuesIn(namesOf(AAANC_GOLDEN, ".hex")),
                         testName);

TEST(Dump, EveryFormIsReadAlike)
{
    const Bytes expected =
        readDump("golden", readText(AAANC_GOLDEN "/radius-server.little.hex")).bytes;
    const std::vector<std::string> forms = namesOf("dumps", ".txt");
    EXPECT_EQ(forms.size(), 6U);
    for (const std::string &form : forms) {
        EXPECT_EQ(readDump(form, readText(testData("dumps/" + form + ".txt"))).bytes, expected)
            << form;
    }
}

TEST(Dump, DigitsThatLookLikeOffsetsAreDigits)
{
    const Bytes zeros(12);
    EXPECT_EQ(readDump("words", "00000000\n00000000\n00000000\n").bytes, zeros);
    EXPECT_EQ(readDump("line", "00000000 00000000 00000000").bytes, zeros);
    EXPECT_EQ(readDump("bytes", "0000 00 00 00 00 00 00 00 00 00 00").bytes, zeros);
}

TEST(Decode, RefusesBadDumps)
{
    expectRefused("decode", "bad-dumps.txt");
}

TEST(Decode, HidesSharedKeys)
{
    const ScratchDirectory scratch;
    std::string hex = "0000003f00000001000001ec" + std::string(2 * 492, '0');
    for (const std::size_t offset : {kHeaderSize + 100, kHeaderSize + 232}) { // plainKey, cipherKey
        hex.replace(2 * offset, 12, "63616e617279");
        hex.replace(2 * offset + 20, 12, "63616e617279"); // behind the terminator, too
    }
    const std::string unknown = "000000630000000100000006"
                                "63616e617279";
    for (const std::string &dump : {hex, unknown}) {
        const std::string file = scratch.write("dump", dump);
        for (const std::string form : {"--json", "--hex"}) {
            const Outcome hidden = runAaanc({"decode", "--hex", form, file});
            EXPECT_EQ(hidden.status, 1);
            EXPECT_NE(hidden.output.find("**"), std::string::npos);
            EXPECT_EQ(hidden.output.find("canary"), std::string::npos);
            EXPECT_EQ(hidden.output.find("63616e617279"), std::string::npos);
            EXPECT_EQ(hidden.output.find("63 61 6e 61 72 79"), std::string::npos);
            const Outcome shown = runAaanc({"decode", "--hex", "--show-keys", form, file});
            EXPECT_EQ(shown.output.find("**"), std::string::npos);
        }
        // Nor does an error quote one.
        const Outcome refused = runAaanc({"decode", scratch.write("bad", dump + "0")});
        EXPECT_EQ(refused.status, 2);
        EXPECT_EQ(refused.errors.find("63616e617279"), std::string::npos);
    }
}

TEST(Decode, HelpsWithExamples)
{
    const Outcome help = runAaanc({"decode", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.output.find("Examples:\n  xxd request.bin | aaanc decode -\n"),
              std::string::npos);
}

} // namespace

} // namespace aaanc::test
