// What the AAA service makes of requests.
#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "aaa_service.hpp"
#include "messages.hpp"

namespace aaanc::test
{

namespace
{

Bytes words(std::initializer_list<std::uint32_t> values)
{
    Bytes bytes(values.size() * sizeof(std::uint32_t));
    std::memcpy(bytes.data(), values.begin(), bytes.size());
    return bytes;
}

std::uint32_t resultOf(const Parameter &reply)
{
    std::uint32_t result = 0;
    std::memcpy(&result, reply.data.data(), sizeof result);
    return result;
}

std::uint32_t answer(RequestHandler &handler, const ObjectRecord &object, const Bytes &block)
{
    return resultOf(handler.answer({object, {0, static_cast<std::uint32_t>(block.size()), block}}));
}

Bytes startFail(std::uint32_t set, std::uint8_t type)
{
    Bytes block = words({21, set, 1});
    block.push_back(std::byte{type});
    return block;
}

TEST(Service, KeepsWhatIsSetUntilItIsUndone)
{
    RequestHandler handler;
    EXPECT_EQ(answer(handler, {5, 3, 0}, words({5, 1, 4, 15})), 0U);
    EXPECT_EQ(answer(handler, {21, 3, 0}, startFail(1, 2)), 0U);
    EXPECT_EQ(answer(handler, {5, 3, 0}, words({5, 1, 4, 30})), 0U);
    const auto &objects = handler.state().objects();
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects.at({5, {}}).request.fields.at(0).number, 30U);
    EXPECT_EQ(objects.at({21, {}}).request.fields.at(0).number, 2U);

    EXPECT_EQ(answer(handler, {5, 4, 0}, words({5, 0, 4, 30})), 0U);
    ASSERT_EQ(objects.size(), 1U);
    EXPECT_TRUE(objects.contains({21, {}}));
}

TEST(Service, RefusesWhatIsNotAsItShouldBe)
{
    RequestHandler handler;
    const Bytes good = words({5, 1, 4, 15});
    EXPECT_EQ(answer(handler, {21, 3, 0}, good), kServiceMalformed) << "another type in the object";
    EXPECT_EQ(answer(handler, {5, 4, 0}, good), kServiceMalformed) << "undo in the object";
    EXPECT_EQ(answer(handler, {5, 3, 1}, good), kServiceMalformed) << "third word of the object";
    EXPECT_EQ(answer(handler, {5, 3, 0}, words({5, 1})), kServiceMalformed) << "no whole header";
    EXPECT_EQ(answer(handler, {5, 3, 0}, words({5, 1, 8, 15, 0})), kServiceMalformed) << "length";
    EXPECT_EQ(answer(handler, {5, 3, 0}, words({5, 1, 4})), kServiceMalformed) << "no payload";
    EXPECT_EQ(answer(handler, {6, 3, 0}, words({6, 1, 4, 15})), kServiceMalformed)
        << "unknown type";
    EXPECT_TRUE(handler.state().objects().empty());
}

TEST(Service, SaysWhatIsNotAsItShouldBe)
{
    const auto reason = [](const ObjectRecord &object, const Bytes &block) {
        return malformationOf({object, {0, static_cast<std::uint32_t>(block.size()), block}},
                              decodeRequest(block));
    };
    const Bytes good = words({5, 1, 4, 15});
    EXPECT_EQ(reason({5, 3, 0}, good), "");
    EXPECT_EQ(reason({21, 3, 0}, good), "the object record has message type 21, the parameter 5");
    EXPECT_EQ(reason({5, 4, 0}, good), "the object record has operation 4; for set it is 3");
    EXPECT_EQ(reason({5, 3, 0}, words({5, 0, 4, 15})),
              "the object record has operation 3; for undo it is 4");
    EXPECT_EQ(reason({5, 3, 1}, good), "the last word of the object record is 1, not 0");
    EXPECT_EQ(reason({5, 3, 0}, words({5, 1})), "8 bytes, fewer than the 12 of a header");
    EXPECT_EQ(reason({5, 3, 0}, words({5, 1, 8, 15, 0})),
              "length 8 and 8 bytes of payload; type 5 has 4");
    EXPECT_EQ(reason({6, 3, 0}, words({6, 1, 4, 15})), "no message is of type 6");
}

TEST(Service, AcceptsWhatIsWithoutMeaningAndKeepsNothing)
{
    RequestHandler handler;
    EXPECT_EQ(answer(handler, {0, 4, 0}, words({0, 0, 0})), 0U);
    Bytes nobody = words({63, 1, 492});
    nobody.resize(nobody.size() + 492);
    EXPECT_EQ(answer(handler, {63, 3, 0}, nobody), 0U);
    EXPECT_TRUE(handler.state().objects().empty());
}

// A payload with `text` at `offset`, in a block of this type.
Bytes block(std::uint32_t type, std::uint32_t set,
            const std::vector<std::pair<std::size_t, std::string>> &texts)
{
    const MessageLayout *layout = findMessage(type);
    Bytes result = words({type, set, static_cast<std::uint32_t>(layout->length)});
    result.resize(kHeaderSize + layout->length);
    for (const auto &[offset, text] : texts) {
        std::memcpy(result.data() + kHeaderSize + offset, text.data(), text.size());
    }
    return result;
}

TEST(Service, TellsObjectsApartByTheirKeys)
{
    RequestHandler handler;
    const auto send = [&](std::uint32_t type, std::uint32_t set,
                          const std::vector<std::pair<std::size_t, std::string>> &texts) {
        EXPECT_EQ(answer(handler, {type, set != 0 ? 3U : 4U, 0}, block(type, set, texts)), 0U);
    };
    send(22, 1, {{0, "core"}});
    send(22, 1, {{0, "edge"}});
    send(29, 1, {{0, "core"}}); // a TACACS group
    send(24, 1, {{5, "core"}, {56, "mgmt"}});
    send(24, 1, {{5, "core"}, {56, "blue"}});
    EXPECT_EQ(handler.state().objects().size(), 4U);
    send(24, 0, {{5, "core"}, {56, "global"}});
    send(22, 0, {{0, "core"}});
    EXPECT_EQ(handler.state().objects().size(), 2U);
    EXPECT_TRUE(handler.state().objects().contains({22, {"edge"}}));
    EXPECT_TRUE(handler.state().objects().contains({29, {"core"}}));
}

TEST(Request, IsDecodedInEitherByteOrder)
{
    const Bytes big = {std::byte{0}, std::byte{0}, std::byte{0}, std::byte{5},
                       std::byte{0}, std::byte{0}, std::byte{0}, std::byte{1},
                       std::byte{0}, std::byte{0}, std::byte{0}, std::byte{4},
                       std::byte{0}, std::byte{0}, std::byte{1}, std::byte{2}};
    const std::optional<Request> request = decodeRequest(big, std::endian::big);
    ASSERT_TRUE(request);
    EXPECT_EQ(request->type, 5U);
    EXPECT_EQ(request->set, 1U);
    EXPECT_EQ(request->layout->meaning, "accounting interval");
    ASSERT_EQ(request->fields.size(), 1U);
    EXPECT_EQ(request->fields[0].number, 258U);
    EXPECT_TRUE(request->problems.empty());
}

TEST(Request, NamesWhatIsWrong)
{
    Bytes odd = block(24, 1, {{0, "x"}, {5, std::string(33, 'g')}, {56, std::string("a\0b", 3)}});
    const std::optional<Request> request = decodeRequest(odd);
    ASSERT_TRUE(request);
    EXPECT_TRUE(request->fits);
    EXPECT_EQ(request->problems,
              (std::vector<std::string>{"byte 0 of the payload (reserved) is not zero",
                                        "groupName has no terminator",
                                        "byte 58 of the payload (vrfName) is not zero"}));
    odd.pop_back();
    EXPECT_FALSE(decodeRequest(odd)->fits);
    EXPECT_FALSE(decodeRequest(std::span(odd).first(11)));
}

} // namespace

} // namespace aaanc::test
