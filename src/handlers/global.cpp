// /orvek-aaa:sysAaa/aaaGlobal: one request for each changed leaf.
#include "aaa_nc/global.hpp"

#include <cstring>

#include "handlers/handlers.hpp"
#include "walk/walk.hpp"

static int globalChange(AaaNcWalk &walk, const AaaNcChange &change)
{
    if (std::strcmp(change.leaf, "startFailType") == 0) {
        const AaaNcStartFailInfo info = {change.value->data.uint8_val};
        aaaNcWalkParamSet(walk, AAA_NC_MSG_START_FAIL, sizeof(info), &info);
    } else if (std::strcmp(change.leaf, "accountInterval") == 0) {
        const AaaNcAccountIntervalInfo info = {change.value->data.uint32_val};
        aaaNcWalkParamSet(walk, AAA_NC_MSG_ACCOUNT_INTERVAL, sizeof(info), &info);
    } else {
        // The text speaks of start-fail whatever the leaf; people search for it.
        AAA_NC_DBG(walk.handler.function.oneLeafChangeParse,
                   "Start fail node name %s is not support.", change.leaf);
        return 0;
    }
    return aaaNcWalkSend(walk);
}

static constexpr AaaNcHandler kGlobal = {
    {"aaaNcGlobalConfChanges", "aaaNcGlobalLeafChangesParse", "aaaNcGlobalOneLeafChangeParse",
     nullptr},
    {AAA_NC_LOG_TEXT("Config global start fail: path %s, notify event %d."),
     AAA_NC_LOG_TEXT("Global xpath %s, type %d, change oper %d."),
     AAA_NC_LOG_TEXT("Global node name %s."), AAA_NC_NO_LEAF_NAME},
    AAA_NC_NO_LEAF,
    0, // alone among the handlers, this one passes over a change without a value
    {7},
    globalChange,
    nullptr,
};

int aaaNcGlobalConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                           void * /*private_ctx*/)
{
    AaaNcWalk walk{kGlobal};
    return aaaNcChangesWalk(walk, session, xpath, event);
}
