#include "messages.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#include <fmt/format.h>

#include "printable.hpp"

namespace aaanc
{

namespace
{

using enum FieldKind;
using enum FieldRole;

constexpr std::string_view kUnknown = "unknown";

constexpr NumberMeaning kFamilies[] = {{2, "IPv4"}, {10, "IPv6"}};
constexpr NumberMeaning kKeyTypes[] = {{0, "plain"}, {1, "cipher"}};
constexpr NumberMeaning kLeavesGiven[] = {{0x10, "key type"}, {0x20, "key"}, {0x40, "priority"}};
constexpr NumberMeaning kConfirmations[] = {{0, "no"}, {1, "yes"}};
constexpr NumberMeaning kMethodKinds[] = {{0, "authentication"}, {2, "accounting"}};
constexpr NumberMeaning kMethodTypes[] = {{0, "dot1x authentication"},
                                          {5, "default authentication"},
                                          {2, "dot1x accounting"},
                                          {6, "default accounting"}};
constexpr NumberMeaning kAccountStages[] = {
    {0, "none"}, {1, "start-stop"}, {2, "stop-only"}, {3, "wait-start"}};

constexpr FieldLayout kDomain[] = {
    {"domainName", 0, 64, Text, Key},
    {"bSecondConfirm", 64, 4, Number, Plain, kConfirmations},
};
constexpr FieldLayout kDomainMethod[] = {
    {"domainName", 0, 64, Text, Key},
    {"methodKind", 64, 4, Number, Key, kMethodKinds},
    {"type", 68, 4, Number, Key, kMethodTypes},
    {"accountStage", 72, 4, Number, Plain, kAccountStages},
    {"", 76, 4, Reserved},
    {"groups[0].groupType", 80, 4, Number},
    {"groups[0].groupName", 84, 36},
    {"groups[1].groupType", 120, 4, Number},
    {"groups[1].groupName", 124, 36},
    {"groups[2].groupType", 160, 4, Number},
    {"groups[2].groupName", 164, 36},
    {"groups[3].groupType", 200, 4, Number},
    {"groups[3].groupName", 204, 36},
    {"", 240, 4, Reserved},
};
constexpr FieldLayout kAccountInterval[] = {
    {"accountInterval", 0, 4, Number},
};
constexpr FieldLayout kSourceInterface[] = {
    {"srcInterfaceName", 0, 40, Text, Key},
    {"vrfName", 40, 33},
};
constexpr FieldLayout kStartFail[] = {
    {"startFailType", 0, 1, Number},
};
constexpr FieldLayout kServerGroup[] = {
    {"groupName", 0, 33, Text, Key},
};
constexpr FieldLayout kRadiusGroupVrf[] = {
    {"", 0, 5, Reserved}, {"groupName", 5, 33, Text, Key}, {"", 38, 18, Reserved},
    {"vrfName", 56, 33},  {"", 89, 19, Reserved},
};
constexpr FieldLayout kTacacsGroupVrf[] = {
    {"", 0, 5, Reserved}, {"groupName", 5, 33, Text, Key}, {"", 38, 10, Reserved},
    {"vrfName", 48, 33},  {"", 81, 3, Reserved},
};
constexpr FieldLayout kTacacsServer[] = {
    {"", 0, 4, Reserved},
    {"groupName", 4, 33, Text, Key},
    {"Addr", 37, 48, Text, Key},
    {"family", 85, 1, Number, Key, kFamilies},
    {"", 86, 2, Reserved},
    {"Port", 88, 4, Number, Key},
    {"plainKey", 92, 128, Text, Secret},
    {"keyType", 220, 4, Number, Plain, kKeyTypes},
    {"cipherKey", 224, 260, Text, Secret},
    {"priority", 484, 4, Number},
    {"", 488, 32, Reserved},
};
constexpr FieldLayout kRadiusServer[] = {
    {"groupName", 0, 33, Text, Key},
    {"Addr", 33, 48, Text, Key},
    {"family", 81, 1, Number, Key, kFamilies},
    {"", 82, 2, Reserved},
    {"authPort", 84, 4, Number, Key},
    {"acctPort", 88, 4, Number, Key},
    {"setFlag", 92, 2, Number, Plain, kLeavesGiven, true},
    {"", 94, 2, Reserved},
    {"priority", 96, 4, Number},
    {"plainKey", 100, 128, Text, Secret},
    {"keyType", 228, 4, Number, Plain, kKeyTypes},
    {"cipherKey", 232, 260, Text, Secret},
};

constexpr MessageLayout kMessages[] = {
    {0, 68, "domain", kDomain},
    {1, 244, "domain method list", kDomainMethod},
    {5, 4, "accounting interval", kAccountInterval},
    {19, 73, "source interface", kSourceInterface},
    {21, 1, "start-failure policy", kStartFail},
    {22, 33, "RADIUS server group", kServerGroup},
    {24, 108, "RADIUS server group VRF binding", kRadiusGroupVrf},
    {29, 33, "TACACS server group", kServerGroup},
    {30, 520, "TACACS server", kTacacsServer},
    {31, 84, "TACACS server group VRF binding", kTacacsGroupVrf},
    {63, 492, "RADIUS server", kRadiusServer},
};

// Every byte of a payload belongs to exactly one field.
constexpr bool hasNoGaps(const MessageLayout &message)
{
    std::size_t offset = 0;
    for (const FieldLayout &field : message.fields) {
        if (field.offset != offset) {
            return false;
        }
        offset += field.size;
    }
    return offset == message.length;
}
static_assert(std::ranges::all_of(kMessages, hasNoGaps));

bool isZero(const Field &field)
{
    return field.text.empty() && field.number == 0;
}

std::uint32_t readNumber(std::span<const std::byte> bytes, std::endian order)
{
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t most_first = order == std::endian::big ? i : bytes.size() - 1 - i;
        number = number << 8U | std::to_integer<std::uint32_t>(bytes[most_first]);
    }
    return number;
}

class Decoder
{
public:
    Decoder(Request &request, std::span<const std::byte> payload, std::endian order)
        : request_(request), payload_(payload), order_(order)
    {
    }

    void run()
    {
        if (payload_.size() != request_.length) {
            misfit(fmt::format("the length is {}, but {} payload bytes follow", request_.length,
                               payload_.size()));
        }
        if (request_.layout == nullptr) {
            misfit(fmt::format("message type {} is unknown", request_.type));
            return;
        }
        if (request_.length != request_.layout->length && !isWithoutMeaning(request_)) {
            misfit(fmt::format("the length is {}; for this type it is {}", request_.length,
                               request_.layout->length));
        }
        for (const FieldLayout &field : request_.layout->fields) {
            if (field.offset < payload_.size()) {
                const std::span<const std::byte> rest = payload_.subspan(field.offset);
                decode(field, rest.first(std::min(field.size, rest.size())));
            }
        }
        if (!isWithoutMeaning(request_)) {
            std::ranges::for_each(request_.fields,
                                  [this](const Field &each) { checkMeaning(each); });
        }
    }

private:
    // `bytes` are fewer than the field has at the end of a payload that is too short.
    void decode(const FieldLayout &field, std::span<const std::byte> bytes)
    {
        switch (field.kind) {
        case Text:
            decodeText(field, bytes);
            break;
        case Number:
            if (bytes.size() == field.size) {
                request_.fields.push_back({&field, {}, readNumber(bytes, order_)});
            }
            break;
        case Reserved:
            checkZero("reserved", field.offset, bytes);
            break;
        }
    }

    void decodeText(const FieldLayout &field, std::span<const std::byte> bytes)
    {
        const auto end = std::ranges::find(bytes, std::byte{0});
        const auto length = static_cast<std::size_t>(end - bytes.begin());
        std::string text(length, '\0');
        std::memcpy(text.data(), bytes.data(), length);
        request_.fields.push_back({&field, std::move(text), 0});
        if (end == bytes.end()) {
            problem(fmt::format("{} has no terminator", field.name));
        }
        checkZero(field.name, field.offset + length, bytes.subspan(length));
    }

    void checkZero(std::string_view what, std::size_t offset, std::span<const std::byte> bytes)
    {
        for (const std::byte byte : bytes) {
            if (byte != std::byte{0}) {
                // Which value it has is not told: it may be the rest of a shared key.
                problem(fmt::format("byte {} of the payload ({}) is not zero", offset, what));
            }
            ++offset;
        }
    }

    void checkMeaning(const Field &field)
    {
        const std::string_view name = field.layout->name;
        if (const std::uint32_t bits = bitsWithoutMeaning(field); bits != 0) {
            problem(fmt::format("{} has bits that mean nothing: 0x{:02x}", name, bits));
        } else if (!hasMeaning(field)) {
            problem(fmt::format("{} is {}, which means nothing", name, field.number));
        }
    }

    static std::uint32_t bitsWithoutMeaning(const Field &field)
    {
        std::uint32_t bits = field.layout->bits ? field.number : 0;
        for (const NumberMeaning &each : field.layout->meanings) {
            bits &= ~each.number;
        }
        return bits;
    }

    // True also of a field that takes any number.
    [[nodiscard]] bool hasMeaning(const Field &field) const
    {
        if (isGroupType(*field.layout)) {
            return groupTypeMeaning(request_, field.number) != kUnknown;
        }
        const std::span<const NumberMeaning> meanings = field.layout->meanings;
        return meanings.empty() || field.layout->bits ||
               std::ranges::find(meanings, field.number, &NumberMeaning::number) != meanings.end();
    }

    void misfit(std::string text)
    {
        request_.fits = false;
        problem(std::move(text));
    }

    void problem(std::string text)
    {
        request_.problems.push_back(std::move(text));
    }

    Request &request_;
    std::span<const std::byte> payload_;
    std::endian order_;
};

} // namespace

const MessageLayout *findMessage(std::uint32_t type)
{
    const auto *found = std::ranges::find(kMessages, type, &MessageLayout::type);
    return found != std::end(kMessages) ? found : nullptr;
}

std::uint32_t wordAt(std::span<const std::byte> bytes, std::size_t offset, std::endian order)
{
    return readNumber(bytes.subspan(offset, sizeof(std::uint32_t)), order);
}

std::optional<Request> decodeRequest(std::span<const std::byte> block, std::endian order)
{
    if (block.size() < kHeaderSize) {
        return std::nullopt;
    }
    Request request;
    request.type = wordAt(block, 0, order);
    request.set = wordAt(block, 4, order);
    request.length = wordAt(block, 8, order);
    request.layout = findMessage(request.type);
    Decoder(request, block.subspan(kHeaderSize), order).run();
    return request;
}

std::vector<std::string> objectProblems(const Request &request, std::uint32_t type,
                                        std::uint32_t operation)
{
    constexpr std::uint32_t kSet = 3;
    constexpr std::uint32_t kUndo = 4;
    std::vector<std::string> problems;
    if (type != request.type) {
        problems.push_back(fmt::format("the object record has message type {}, the parameter {}",
                                       type, request.type));
    }
    const std::uint32_t expected = request.set != 0 ? kSet : kUndo;
    if (operation != expected) {
        problems.push_back(fmt::format("the object record has operation {}; for {} it is {}",
                                       operation, request.set != 0 ? "set" : "undo", expected));
    }
    return problems;
}

bool isWithoutMeaning(const Request &request)
{
    constexpr std::uint32_t kDomainType = 0;
    constexpr std::uint32_t kRadiusServerType = 63;
    // A server group of an unknown type goes out as a block that was not filled.
    const bool unfilled =
        request.type == kDomainType && request.length == 0 && request.fields.empty();
    // A walk over no RADIUS changes ends with a record of nobody.
    const bool nobody = request.type == kRadiusServerType && request.fits &&
                        std::ranges::all_of(request.fields, isZero);
    return unfilled || nobody;
}

bool isGroupType(const FieldLayout &field)
{
    return field.name.ends_with("].groupType");
}

std::string fieldText(const Field &field)
{
    if (field.layout->kind == Text) {
        return printable(field.text);
    }
    const std::uint32_t number = field.number;
    std::string meanings;
    for (const NumberMeaning &each : field.layout->meanings) {
        if (field.layout->bits ? (number & each.number) != 0 : number == each.number) {
            meanings += (meanings.empty() ? "" : ", ");
            meanings += each.meaning;
        }
    }
    const std::string digits =
        field.layout->bits ? fmt::format("0x{:02x}", number) : fmt::format("{}", number);
    return meanings.empty() ? digits : fmt::format("{} ({})", digits, meanings);
}

std::string_view groupTypeMeaning(const Request &method_list, std::uint32_t type)
{
    constexpr std::string_view kAuthentication[] = {"unset", kUnknown, "tacacs-group",
                                                    "radius-group"};
    constexpr std::string_view kAccounting[] = {"unset", "none", "radius-group", "tacacs-group"};
    const bool accounting = std::ranges::any_of(method_list.fields, [](const Field &field) {
        return field.layout->name == "methodKind" && field.number == kMethodKinds[1].number;
    });
    const auto &meanings = accounting ? kAccounting : kAuthentication;
    return type < std::size(meanings) ? meanings[type] : kUnknown;
}

bool isSecret(const MessageLayout *layout, std::size_t offset)
{
    if (layout == nullptr) {
        return offset >= kHeaderSize;
    }
    return std::ranges::any_of(layout->fields, [=](const FieldLayout &field) {
        return field.role == Secret && offset >= kHeaderSize + field.offset &&
               offset < kHeaderSize + field.offset + field.size;
    });
}

} // namespace aaanc
