// AAA_NC_MSG_DOMAIN_METHOD: a domain's 802.1X method list, for authentication
// or for accounting.
#pragma once

#include "aaa_nc/layout.hpp"

// One server group of a method list. The codes of the group types are not the
// same in the two kinds of list.
struct AaaNcGroup {
    std::uint32_t groupType; // 0 while unset
    char groupName[36];      // NUL-terminated, at most 32 characters
};

AAA_NC_FIELD(AaaNcGroup, groupType, 0, 4);
AAA_NC_FIELD(AaaNcGroup, groupName, 4, 36);
AAA_NC_RECORD(AaaNcGroup, 40);

enum { AAA_NC_GROUPS = 4 }; // groups that a method list holds

struct AaaNcDomainMethodInfo {
    char domainName[64];      // NUL-terminated, at most 63 characters
    std::uint32_t methodKind; // 0 authentication, 2 accounting
    std::uint32_t type; // protocol: dot1x 0 or 2, default 5 or 6 (authentication or accounting)
    std::uint32_t accountStage; // 0 none, 1 start-stop, 2 stop-only, 3 wait-start
    std::uint8_t reserved76[4]; // zero
    AaaNcGroup groups[AAA_NC_GROUPS];
    std::uint8_t reserved240[4]; // zero
};

AAA_NC_FIELD(AaaNcDomainMethodInfo, domainName, 0, 64);
AAA_NC_FIELD(AaaNcDomainMethodInfo, methodKind, 64, 4);
AAA_NC_FIELD(AaaNcDomainMethodInfo, type, 68, 4);
AAA_NC_FIELD(AaaNcDomainMethodInfo, accountStage, 72, 4);
AAA_NC_FIELD(AaaNcDomainMethodInfo, reserved76, 76, 4);
AAA_NC_FIELD(AaaNcDomainMethodInfo, groups, 80, 160);
AAA_NC_FIELD(AaaNcDomainMethodInfo, reserved240, 240, 4);
AAA_NC_RECORD(AaaNcDomainMethodInfo, 244);
