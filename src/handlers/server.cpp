#include "handlers/server.hpp"

#include <cstring>

#include "walk/checks.hpp"
#include "walk/text.hpp"

// The size that the platform decodes a key into.
enum { kDecodedSize = 259 };

template <typename Record> static Record &recordField(AaaNcGather &gather, const AaaNcLeaf &leaf)
{
    return *static_cast<Record *>(static_cast<void *>(gather.record + leaf.offset));
}

bool aaaNcServerAddrIsBad(const AaaNcServerName &name)
{
    return name.family == AAA_NC_FAMILY_IPV6 && aaaNcServerIpCheck(name.Addr) == 0;
}

int aaaNcServerAddrStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value)
{
    auto &name = recordField<AaaNcServerName>(gather, leaf);
    aaaNcTextCopy(name.Addr, aaaNcValueText(value), sizeof(name.Addr));
    name.family = static_cast<AaaNcServerWalk &>(gather).family;
    return 0;
}

int aaaNcServerKeyTypeStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value)
{
    const bool plain = std::strcmp(aaaNcValueText(value), "0") == 0;
    recordField<AaaNcServerKey>(gather, leaf).keyType =
        plain ? AAA_NC_KEY_PLAIN : AAA_NC_KEY_CIPHER;
    return 0;
}

int aaaNcServerKeyStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value)
{
    const char *function = gather.handler.function.infoFill;

    // One zero byte more than is decoded into: a key that fills it all is terminated.
    char decoded[kDecodedSize + 1] = {};
    if (sr_convert_hexstring_to_string(aaaNcValueText(value), kDecodedSize, decoded) != 0) {
        return AAA_NC_FAILED;
    }
    auto &key = recordField<AaaNcServerKey>(gather, leaf);
    const std::size_t length = std::strlen(decoded);
    if (key.keyType != AAA_NC_KEY_PLAIN) {
        // GCOVR_EXCL_START: no input comes here, since 259 bytes at most are decoded. The
        // bound is the field's, whatever is decoded into.
        if (length >= sizeof(key.cipherKey)) {
            AAA_NC_ERR(function, "Aaa netconf client input cipher key length[%d] is too long.",
                       static_cast<int>(length));
            return AAA_NC_FAILED;
        }
        // GCOVR_EXCL_STOP
        aaaNcTextCopy(key.cipherKey, decoded, sizeof(key.cipherKey));
    } else {
        if (length >= sizeof(key.plainKey)) {
            AAA_NC_ERR(function, "Aaa netconf client input plain key length[%d] is too long.",
                       static_cast<int>(length));
            return AAA_NC_FAILED;
        }
        aaaNcTextCopy(key.plainKey, decoded, sizeof(key.plainKey));
    }
    return 0;
}
