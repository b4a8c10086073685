// The CMF client functions, as a plug-in finds them.
#include "cmf.h"

#include <cstring>
#include <memory>

#include "cmf_client.hpp"

using aaanc::CmfClient;

int CMF_ClientServiceReg(const char *service, const void *record)
{
    return service != nullptr && record != nullptr ? aaanc::kCmfDone : aaanc::kCmfInvalid;
}

void *CMF_ClientContextInit(const char *service, uint32_t /*client*/, uint32_t /*third*/)
{
    const aaanc::CmfEndpoint *endpoint = aaanc::cmfEndpoint();
    if (service == nullptr || endpoint == nullptr) {
        return nullptr;
    }
    auto client = std::make_unique<CmfClient>(*endpoint);
    return client->connected() ? client.release() : nullptr;
}

int CMF_ClientContextObjSet(void *ctx, const void *record)
{
    if (ctx == nullptr || record == nullptr) {
        return aaanc::kCmfInvalid;
    }
    aaanc::ObjectRecord object;
    static_assert(sizeof object == 12);
    std::memcpy(&object, record, sizeof object);
    return static_cast<CmfClient *>(ctx)->setObject(object);
}

int CMF_ClientParamEncode(void *ctx, uint32_t kind, uint32_t length, const void *data)
{
    if (ctx == nullptr || data == nullptr) {
        return aaanc::kCmfInvalid;
    }
    const auto *bytes = static_cast<const std::byte *>(data);
    return static_cast<CmfClient *>(ctx)->encode({kind, length, {bytes, bytes + length}});
}

int CMF_ClientRequestSend(void *ctx)
{
    return ctx != nullptr ? static_cast<CmfClient *>(ctx)->send() : aaanc::kCmfInvalid;
}

int CMF_ClientResponseRecv(void *ctx)
{
    return ctx != nullptr ? static_cast<CmfClient *>(ctx)->receive() : aaanc::kCmfInvalid;
}

int CMF_ClientParamDecode(void *ctx, uint32_t *kind, uint32_t *length, void **data)
{
    if (ctx == nullptr || kind == nullptr || length == nullptr || data == nullptr) {
        return aaanc::kCmfInvalid;
    }
    const aaanc::Parameter *reply = nullptr;
    const int code = static_cast<CmfClient *>(ctx)->decode(&reply);
    if (code == aaanc::kCmfDone) {
        *kind = reply->kind;
        *length = reply->length;
        *data = reply->data.empty() ? nullptr : const_cast<std::byte *>(reply->data.data());
    }
    return code;
}

void CMF_ClientContextClose(void *ctx)
{
    delete static_cast<CmfClient *>(ctx);
}
