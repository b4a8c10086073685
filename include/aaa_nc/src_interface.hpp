// AAA_NC_MSG_SRC_INTERFACE: the interface and VRF that AAA traffic leaves from.
#pragma once

#include "aaa_nc/layout.hpp"

struct AaaNcSrcInterfaceInfo {
    char srcInterfaceName[40]; // NUL-terminated, at most 39 characters
    char vrfName[33];          // NUL-terminated, at most 32 characters
};

AAA_NC_FIELD(AaaNcSrcInterfaceInfo, srcInterfaceName, 0, 40);
AAA_NC_FIELD(AaaNcSrcInterfaceInfo, vrfName, 40, 33);
AAA_NC_RECORD(AaaNcSrcInterfaceInfo, 73);
