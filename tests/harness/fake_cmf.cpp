// The CMF client library.
#include "fake_run.hpp"
#include "heap_watch.hpp"
#include "trace_text.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace aaanc::test;

namespace
{

constexpr std::size_t kReadableReply = 4096;
constexpr std::size_t kParameterBlock = 1024;

std::uint32_t word(const void *record, std::size_t index)
{
    std::uint32_t value = 0;
    std::memcpy(&value, static_cast<const char *>(record) + 4 * index, sizeof value);
    return value;
}

std::string hexWord(std::uint32_t value)
{
    char text[9];
    std::snprintf(text, sizeof text, "%08x", value);
    return text;
}

void appendHex(std::string &line, const void *data, std::size_t length)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    const auto *bytes = static_cast<const unsigned char *>(data);
    for (std::size_t at = 0; at < length; ++at) {
        line += kDigits[bytes[at] >> 4];
        line += kDigits[bytes[at] & 0xf];
    }
}

} // namespace

int CMF_ClientServiceReg(const char *service, const void *record)
{
    const InPlatform here;
    EntryRun &running = entryRun();
    std::string line = "register ";
    appendQuoted(line, service);
    line += ' ' + hexWord(word(record, 0)) + ' ' + hexWord(word(record, 1));
    line += " private " + running.pointerName(running.private_context);
    running.recordResult(std::move(line), running.scenario.registration_result);
    return running.scenario.registration_result;
}

void *CMF_ClientContextInit(const char *service, uint32_t client, uint32_t third)
{
    const InPlatform here;
    static const Exchange kAccepted;
    Run &playing = run();
    if (playing.context)
        playing.wrong("cmf-init while another context is open");
    const auto &exchanges = playing.scenario.exchanges;
    const auto found = exchanges.find(++playing.requests);
    const Exchange &exchange = found == exchanges.end() ? kAccepted : found->second;

    std::string line = "cmf-init ";
    appendQuoted(line, service);
    line += ' ' + std::to_string(client) + ' ' + std::to_string(third);
    line += exchange.null_context ? " -> null" : " -> ok";
    playing.record(std::move(line));
    if (exchange.null_context)
        return nullptr;
    playing.context = std::make_unique<CmfContext>();
    playing.context->exchange = &exchange;
    return playing.context.get();
}

int CMF_ClientContextObjSet(void *ctx, const void *record)
{
    const InPlatform here;
    Run &playing = run();
    const CmfContext *context = playing.use("cmf-object", ctx);
    if (context == nullptr)
        return kMisused;
    playing.recordResult("cmf-object " + std::to_string(word(record, 0)) + ' ' +
                             std::to_string(word(record, 1)) + ' ' +
                             std::to_string(word(record, 2)),
                         context->exchange->object_set);
    return context->exchange->object_set;
}

int CMF_ClientParamEncode(void *ctx, uint32_t kind, uint32_t length, const void *data)
{
    const InPlatform here;
    Run &playing = run();
    const CmfContext *context = playing.use("cmf-encode", ctx);
    if (context == nullptr)
        return kMisused;
    if (length > kParameterBlock) {
        playing.wrong("cmf-encode of " + std::to_string(length) + " bytes");
        return kMisused;
    }
    std::string line = "cmf-encode " + std::to_string(kind) + ' ' + std::to_string(length) + ' ';
    line.reserve(line.size() + 2 * length + 8);
    appendHex(line, data, length);
    playing.recordResult(std::move(line), context->exchange->encode);
    return context->exchange->encode;
}

int CMF_ClientRequestSend(void *ctx)
{
    const InPlatform here;
    Run &playing = run();
    const CmfContext *context = playing.use("cmf-send", ctx);
    if (context == nullptr)
        return kMisused;
    playing.recordResult("cmf-send", context->exchange->send);
    return context->exchange->send;
}

int CMF_ClientResponseRecv(void *ctx)
{
    const InPlatform here;
    Run &playing = run();
    const CmfContext *context = playing.use("cmf-receive", ctx);
    if (context == nullptr)
        return kMisused;
    playing.recordResult("cmf-receive", context->exchange->receive);
    return context->exchange->receive;
}

int CMF_ClientParamDecode(void *ctx, uint32_t *kind, uint32_t *length, void **data)
{
    const InPlatform here;
    Run &playing = run();
    CmfContext *context = playing.use("cmf-decode", ctx);
    if (context == nullptr)
        return kMisused;
    if (*kind != 0 || *length != 0 || *data != nullptr)
        playing.wrong("cmf-decode with outputs that are not zeroed");
    const std::int32_t code = context->exchange->decode;
    playing.recordResult("cmf-decode", code);
    if (code != 0) {
        *kind = *length = kJunkNumber;
        *data = junkPointer<void>();
        return code;
    }
    const Reply &reply = context->exchange->reply;
    const std::size_t readable = std::min<std::size_t>(reply.decoded_length, kReadableReply);
    std::free(context->reply);
    context->reply = reply.null_data ? nullptr : std::calloc(1, readable);
    if (!reply.null_data) {
        const std::uint32_t header[] = {reply.result, reply.length_field};
        std::memcpy(context->reply, header, std::min(readable, sizeof header));
    }
    *kind = kJunkNumber;
    *length = reply.decoded_length;
    *data = context->reply;
    return 0;
}

void CMF_ClientContextClose(void *ctx)
{
    const InPlatform here;
    Run &playing = run();
    if (playing.use("cmf-close", ctx) == nullptr)
        return;
    playing.context.reset();
    playing.record("cmf-close");
}
