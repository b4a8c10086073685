#include "decode.hpp"

#include <string>
#include <vector>

#include <fmt/format.h>

#include "dump_reader.hpp"
#include "hex.hpp"
#include "input_error.hpp"
#include "input_file.hpp"
#include "request_text.hpp"
#include "standard_streams.hpp"

namespace aaanc
{

namespace
{

using Json = nlohmann::ordered_json;

constexpr std::size_t kObjectSize = sizeof(ObjectRecord);

void appendWord(Bytes &bytes, std::uint32_t word, std::endian order)
{
    for (const unsigned byte : {0U, 1U, 2U, 3U}) {
        const unsigned shift = 8U * (order == std::endian::big ? 3U - byte : byte);
        bytes.push_back(static_cast<std::byte>(word >> shift));
    }
}

// How much of a header makes sense when it is read in this order.
int plausibility(const Bytes &block, std::endian order)
{
    const MessageLayout *layout = findMessage(wordAt(block, 0, order));
    const std::uint32_t length = wordAt(block, 8, order);
    return (layout != nullptr ? 1 : 0) + (wordAt(block, 4, order) <= 1 ? 1 : 0) +
           (layout != nullptr && length == layout->length ? 1 : 0) +
           (length == block.size() - kHeaderSize ? 1 : 0);
}

// Big-endian, the device's own, where both make as much sense.
std::endian detectOrder(const Bytes &block)
{
    return plausibility(block, std::endian::little) > plausibility(block, std::endian::big)
               ? std::endian::little
               : std::endian::big;
}

void checkObject(Request &request, const Bytes &object, std::endian order)
{
    const std::vector<std::string> problems =
        objectProblems(request, wordAt(object, 0, order), wordAt(object, 4, order));
    request.problems.insert(request.problems.end(), problems.begin(), problems.end());
    for (std::size_t i = 8; i < kObjectSize; ++i) {
        if (object[i] != std::byte{0}) {
            request.problems.push_back(
                fmt::format("byte {} of the object record (reserved) is not zero", i));
        }
    }
}

// What is wrong beyond what the fields tell.
void checkWhole(Request &request, std::size_t payload_size)
{
    if (request.set > 1) {
        request.problems.push_back(
            fmt::format("bDoFlag is {}; it is 1 for set or 0 for undo", request.set));
    }
    if (request.layout != nullptr && request.layout->length < payload_size) {
        request.problems.push_back(fmt::format("{} trailing bytes behind the payload's {}",
                                               payload_size - request.layout->length,
                                               request.layout->length));
    }
}

struct Decoded {
    Bytes block;
    std::endian order;
    Request request;
};

Decoded decodeDump(const DecodeOptions &options)
{
    const std::string name = inputName(options.file);
    Dump dump = readDump(name, readInput(options.file));
    if (dump.object && dump.object->size() != kObjectSize) {
        throw InputError(name, 0, "",
                         fmt::format("an object record of {} bytes; it has {}", dump.object->size(),
                                     kObjectSize));
    }
    Decoded decoded;
    if (options.type) {
        decoded.order = options.order.value_or(std::endian::big);
        appendWord(decoded.block, *options.type, decoded.order);
        appendWord(decoded.block, 1, decoded.order);
        appendWord(decoded.block, static_cast<std::uint32_t>(dump.bytes.size()), decoded.order);
        decoded.block.insert(decoded.block.end(), dump.bytes.begin(), dump.bytes.end());
    } else {
        if (dump.bytes.size() < kHeaderSize) {
            throw InputError(name, 0, "",
                             fmt::format("{} bytes, fewer than the {} of a header; --type tells "
                                         "the message type of a payload alone",
                                         dump.bytes.size(), kHeaderSize));
        }
        decoded.block = std::move(dump.bytes);
        decoded.order = options.order.value_or(detectOrder(decoded.block));
    }
    decoded.request = *decodeRequest(decoded.block, decoded.order);
    checkWhole(decoded.request, decoded.block.size() - kHeaderSize);
    if (dump.object) {
        checkObject(decoded.request, *dump.object, decoded.order);
    }
    return decoded;
}

std::string_view nameOf(std::endian order)
{
    return order == std::endian::big ? "big" : "little";
}

std::string title(const Decoded &decoded, bool payload_alone)
{
    const Request &request = decoded.request;
    const std::string what =
        payload_alone
            ? fmt::format("payload of {} (type {})",
                          request.layout != nullptr ? request.layout->meaning : "unknown message",
                          request.type)
            : requestTitle(request);
    const std::size_t size = decoded.block.size() - kHeaderSize;
    return fmt::format("{}, {}-endian, {} payload byte{}\n", what, nameOf(decoded.order), size,
                       size == 1 ? "" : "s");
}

Json toJson(const Decoded &decoded, bool payload_alone, bool show_keys)
{
    Json object = {
        {"record", "decoded"}, {"format", kJsonFormat}, {"byte_order", nameOf(decoded.order)}};
    addRequest(object, decoded.request, show_keys);
    if (payload_alone) {
        object["operation"] = nullptr;
    }
    return object;
}

} // namespace

int decode(const DecodeOptions &options)
{
    const Decoded decoded = decodeDump(options);
    const OutputOptions &output = options.output;
    const auto is_hidden = [&](std::size_t offset) {
        return !output.show_keys && isSecret(decoded.request.layout, offset);
    };
    if (output.json) {
        Json object = toJson(decoded, options.type.has_value(), output.show_keys);
        if (output.hex) {
            object["hex"] = hexText(decoded.block, is_hidden);
        }
        // A text that is not UTF-8 has its odd bytes replaced; its bytes are in "hex".
        writeOutput(stdout, object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
    } else {
        std::string text = title(decoded, options.type.has_value());
        text += requestRows(decoded.request, output.show_keys);
        if (output.hex) {
            text += hexDump(decoded.block, "      ", is_hidden);
        }
        writeOutput(stdout, text);
    }
    return decoded.request.problems.empty() ? 0 : 1;
}

} // namespace aaanc
