// The parameter block that carries every request, and the head of its reply.
#pragma once

#include "aaa_nc/layout.hpp"
#include "aaa_nc/message_type.hpp"

// What precedes the payload in a request.
struct AaaNcParamHeader {
    std::uint32_t eMsgType; // AaaNcMsgType
    std::uint32_t bDoFlag;  // 1 set (created or modified), 0 undo (deleted)
    std::uint32_t length;   // bytes of payload that follow, 0 to 1012
};

AAA_NC_FIELD(AaaNcParamHeader, eMsgType, 0, 4);
AAA_NC_FIELD(AaaNcParamHeader, bDoFlag, 4, 4);
AAA_NC_FIELD(AaaNcParamHeader, length, 8, 4);
AAA_NC_RECORD(AaaNcParamHeader, 12);

// A request. The service receives the header and the first `length` bytes of
// data; the rest of the block stays here.
struct AaaNcParam {
    AaaNcParamHeader header;
    std::uint8_t data[1012]; // the payload record of the message type
};

AAA_NC_FIELD(AaaNcParam, header, 0, 12);
AAA_NC_FIELD(AaaNcParam, data, 12, 1012);
AAA_NC_RECORD(AaaNcParam, 1024);

// The head of a reply. `length` bytes of data follow it; no request needs them.
struct AaaNcResp {
    std::uint32_t result; // 0 accepted, else the service's reason
    std::uint32_t length; // bytes of data behind this head
};

AAA_NC_FIELD(AaaNcResp, result, 0, 4);
AAA_NC_FIELD(AaaNcResp, length, 4, 4);
AAA_NC_RECORD(AaaNcResp, 8);
