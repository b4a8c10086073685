// /orvek-aaa:sysAaa/aaaSrcInterface/srcInterface: one request for each
// interface and VRF. The two are paired as they come, whatever their entries.
#include "aaa_nc/src_interface.hpp"

#include "gnl.h"
#include "handlers/handlers.hpp"
#include "walk/gather.hpp"
#include "walk/text.hpp"

enum : std::uint32_t { kSeenName = 1, kSeenVrf = 2 };

struct SrcInterfaceWalk : AaaNcGather {
    AaaNcSrcInterfaceInfo info{};

    explicit SrcInterfaceWalk(const AaaNcHandler &theHandler) : AaaNcGather(theHandler, &info) {}
};

// A shorter text over a longer one leaves the longer one's end behind its terminator.
static int boundedTextStore(AaaNcGather &gather, const AaaNcLeaf &leaf, const sr_val_t &value)
{
    gnl_strlcpy(gather.record + leaf.offset, aaaNcValueText(value), leaf.size);
    return 0;
}

static constexpr AaaNcStore kAsBoundedText = {boundedTextStore, AAA_NC_ANY_SIZE};

static constexpr AaaNcLeaf kLeaves[] = {
    {"srcInterfaceName", kSeenName, kAsBoundedText,
     AAA_NC_IN(AaaNcSrcInterfaceInfo, srcInterfaceName)},
    {"vrfName", kSeenVrf, kAsBoundedText, AAA_NC_IN(AaaNcSrcInterfaceInfo, vrfName)},
};

static constexpr std::uint32_t kSeenBoth = aaaNcSeenBits(kLeaves);

static int srcInterfaceChange(AaaNcWalk &base, const AaaNcChange &change)
{
    auto &walk = static_cast<SrcInterfaceWalk &>(base);
    const AaaNcLeaf *leaf = aaaNcLeafFind(kLeaves, AAA_NC_FIRST, change.leaf);
    if (leaf != nullptr) {
        aaaNcLeafStore(walk, *leaf, change); // a text never fails
    }
    if (walk.seen != kSeenBoth) {
        return 0;
    }
    aaaNcWalkParamSet(walk, AAA_NC_MSG_SRC_INTERFACE, sizeof(walk.info), &walk.info);
    walk.info = {};
    walk.seen = 0;
    return aaaNcWalkSend(walk);
}

static constexpr AaaNcHandler kSrcInterface = {
    {"aaaNcSrcInterfaceConfChanges", "aaaNcSrcInterfaceLeafChangesParse",
     "aaaNcSrcInterfaceOneLeafChangeParse", nullptr},
    {AAA_NC_LOG_TEXT("Config global source interface: path %s, notify event %d."),
     AAA_NC_LOG_TEXT("Source interface xpath %s, type %d, change oper %d."),
     AAA_NC_LOG_TEXT("Source interface node name %s."), AAA_NC_NO_LEAF_NAME},
    AAA_NC_NO_LEAF,
    AAA_NC_BAD_CHANGE,
    {7},
    srcInterfaceChange,
    nullptr,
};

int aaaNcSrcInterfaceConfChanges(sr_session_ctx_t *session, const char *xpath,
                                 sr_notif_event_t event, void * /*private_ctx*/)
{
    SrcInterfaceWalk walk(kSrcInterface);
    return aaaNcChangesWalk(walk, session, xpath, event);
}
