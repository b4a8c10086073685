// AAA_NC_MSG_DOMAIN: an AAA domain comes or goes.
#pragma once

#include "aaa_nc/layout.hpp"

struct AaaNcDomainInfo {
    char domainName[64];          // NUL-terminated, at most 63 characters
    std::uint32_t bSecondConfirm; // 1 when the domain is deleted, else 0
};

AAA_NC_FIELD(AaaNcDomainInfo, domainName, 0, 64);
AAA_NC_FIELD(AaaNcDomainInfo, bSecondConfirm, 64, 4);
AAA_NC_RECORD(AaaNcDomainInfo, 68);
