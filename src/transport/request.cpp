#include "transport/request.hpp"

#include <cstring>

#include "plugin/log.hpp"

#include "cmf.h"

static const char kService[] = "aaa";

// The plug-in's client number; also the low half of the registration's first word.
enum : std::uint32_t { kClient = 145 };

// The object record of a request.
struct AaaNcCmfObject {
    std::uint32_t eMsgType;
    std::uint32_t operation;
    std::uint32_t reserved8; // zero
};

AAA_NC_FIELD(AaaNcCmfObject, eMsgType, 0, 4);
AAA_NC_FIELD(AaaNcCmfObject, operation, 4, 4);
AAA_NC_FIELD(AaaNcCmfObject, reserved8, 8, 4);
AAA_NC_RECORD(AaaNcCmfObject, 12);

enum : std::uint32_t { kOperationSet = 3, kOperationUndo = 4 };

void aaaNcCmfClientReg()
{
    const std::uint32_t record[2] = {0x7FFF0000U | kClient, 0x7FFE0002U};
    const int rc = CMF_ClientServiceReg(kService, record);
    if (rc != 0) {
        AAA_NC_ERR("aaaNcCmfClientReg", "aaa nc cmf client reg failed, iRet=%d.", rc);
    }
}

void aaaNcParamSet(std::uint32_t eMsgType, sr_change_oper_t oper, std::uint32_t length,
                   const void *payload, AaaNcParam &block)
{
    block.header = {eMsgType, oper < SR_OP_DELETED ? 1U : 0U, length};
    AAA_NC_DBG("aaaNcParamSet", "Set param: eMsgType=%d, bDoFlag=%d, length=%d.",
               block.header.eMsgType, block.header.bDoFlag, block.header.length);
    std::memcpy(block.data, payload, length);
}

enum : std::uint32_t { kHeaderLength = sizeof(AaaNcParamHeader), kRespLength = sizeof(AaaNcResp) };

static const char kSendProc[] = "aaaNcCmfSendProc";

// The service's answer in a reply of `length` bytes at `data`.
static int resultDecode(const void *data, std::uint32_t length)
{
    AaaNcResp resp{};
    // A shorter reply has the wrong length whatever it holds: only a whole length
    // field could wrap around to it.
    if (data != nullptr && length >= kRespLength) {
        std::memcpy(&resp, data, sizeof(resp));
    }
    if (length != resp.length + kRespLength) {
        AAA_NC_ERR(kSendProc, "Cmf data len is not the same,respParamLen=<%d>.", length);
        return 0;
    }
    return static_cast<int>(resp.result);
}

// The exchange in an open context.
static int requestExchange(void *ctx, const AaaNcParam &block)
{
    const AaaNcParamHeader &header = block.header;

    const AaaNcCmfObject object = {header.eMsgType,
                                   header.bDoFlag != 0 ? kOperationSet : kOperationUndo, 0};
    int rc = CMF_ClientContextObjSet(ctx, &object);
    if (rc != 0) {
        AAA_NC_ERR(kSendProc, "Aaa nc cmf set client ctx obj failed, ret=%d.", rc);
        return rc;
    }

    rc = CMF_ClientParamEncode(ctx, 0, header.length + kHeaderLength, &block);
    if (rc != 0) {
        AAA_NC_ERR(kSendProc, "Cmf client encode param failed, msgLength=%d + %d, ret=%d.",
                   header.length, kHeaderLength, rc);
        return rc;
    }

    rc = CMF_ClientRequestSend(ctx);
    if (rc == CMF_NO_MEMORY) {
        AAA_NC_ERR(kSendProc, "Cannot execute the command, because system memory is low, ret=%d.\n",
                   rc);
        return rc;
    }
    if (rc != 0) {
        AAA_NC_ERR(kSendProc, "Cmf client send req failed, ret=%d.", rc);
        return rc;
    }

    rc = CMF_ClientResponseRecv(ctx);
    if (rc != 0) {
        AAA_NC_ERR(kSendProc, "Cmf client resp failed, ret=%d.", rc);
        return rc;
    }

    std::uint32_t kind = 0;
    std::uint32_t length = 0;
    void *data = nullptr;
    rc = CMF_ClientParamDecode(ctx, &kind, &length, &data);
    if (rc != 0) {
        AAA_NC_ERR(kSendProc, "Cmf recv decode param failed, ret=%d.", rc);
        return rc;
    }
    return resultDecode(data, length);
}

int aaaNcCmfSendProc(const AaaNcParam &block)
{
    void *ctx = CMF_ClientContextInit(kService, kClient, 1);
    if (ctx == nullptr) {
        AAA_NC_ERR(kSendProc, "Aaa nc cmf init client ctx failed, cmfContext=%d.", 0);
        return 1;
    }
    const int rc = requestExchange(ctx, block);
    CMF_ClientContextClose(ctx);
    return rc;
}
