// Checks that several handlers share. None of them logs.
#pragma once

#include "aaa_nc/domain_method.hpp"

#include "sysrepo.h"

// Reads key `keyName` of list node `nodeName` out of `xpath`. Returns 0 with
// *value pointing into `xpath`, which may now be cut behind the key and is not
// restored; or 5, with *value as it was.
inline int aaaNcEntryKeyGet(char *xpath, const char *nodeName, const char *keyName,
                            const char **value)
{
    sr_xpath_ctx_t state{};
    const char *text = sr_xpath_key_value(xpath, nodeName, keyName, &state);
    if (text == nullptr) {
        return 5;
    }
    *value = text;
    return 0;
}

// Whether group `name` of type `type` may join the first `count` of `records`.
// Returns 0, 25 for a null name, or 46 where the name stands there with the
// same type.
int aaaNcGroupNameCheck(const char *name, const AaaNcGroup *records, std::uint32_t count,
                        std::uint32_t type);

// Whether IPv6 text `address` (RFC 4291 section 2.2) can be a server's. Returns
// 1, or 0 for ::, ::1, fe80::/9, ff00::/8 and anything that is no IPv6 address.
int aaaNcServerIpCheck(const char *address);
