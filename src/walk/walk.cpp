#include "walk/walk.hpp"

#include "transport/request.hpp"

// The value that a change of this operation is about, null where it has none.
static sr_val_t *valueChoose(sr_change_oper_t oper, sr_val_t *oldValue, sr_val_t *newValue)
{
    switch (oper) {
    case SR_OP_CREATED:
    case SR_OP_MODIFIED:
        return newValue;
    case SR_OP_DELETED:
        return oldValue;
    default:
        return nullptr;
    }
}

static int oneLeafChangeParse(AaaNcWalk &walk, sr_val_t *oldValue, sr_val_t *newValue)
{
    const AaaNcHandler &handler = walk.handler;
    const char *function = handler.function.oneLeafChangeParse;

    sr_val_t *value = valueChoose(walk.oper, oldValue, newValue);
    if (value == nullptr) {
        AAA_NC_ERR(function, "Choose value for oper %d failed, old value %p, new value %p.",
                   walk.oper, static_cast<void *>(oldValue), static_cast<void *>(newValue));
        return handler.badChangeResult;
    }
    if (handler.text.change.format != nullptr) {
        AAA_NC_DBG_OF(function, handler.text.change, value->xpath, value->type, walk.oper);
    }
    const char *leaf = value->xpath != nullptr ? sr_xpath_node_name(value->xpath) : nullptr;
    if (leaf == nullptr) {
        AAA_NC_ERR_OF(function, handler.text.noLeaf, value->xpath);
        return handler.noLeafResult;
    }
    AAA_NC_DBG_OF(function, handler.text.node, leaf);
    return handler.change(walk, {walk.oper, value, leaf});
}

static int leafChangesParse(AaaNcWalk &walk, sr_session_ctx_t *session, const char *xpath,
                            sr_change_iter_t *iter)
{
    const AaaNcHandler &handler = walk.handler;
    for (;;) {
        sr_change_oper_t oper = SR_OP_CREATED;
        sr_val_t *oldValue = nullptr;
        sr_val_t *newValue = nullptr;
        int rc = sr_get_change_next(session, iter, &oper, &oldValue, &newValue);
        if (rc == SR_ERR_NO_MORE_CHANGES) {
            return handler.end != nullptr ? handler.end(walk) : 0;
        }
        if (rc != SR_ERR_OK) {
            AAA_NC_ERR(handler.function.leafChangesParse,
                       "Get next change for xpath %s failed: %s.", xpath, sr_strerror(rc));
            return rc;
        }
        walk.oper = oper;
        rc = oneLeafChangeParse(walk, oldValue, newValue);
        // The one place that gives values back, the old one first.
        sr_val_t *const values[] = {oldValue, newValue};
        for (sr_val_t *value : values) {
            sr_free_val(value);
        }
        if (rc != 0) {
            return rc;
        }
    }
}

int aaaNcChangesWalk(AaaNcWalk &walk, sr_session_ctx_t *session, const char *xpath,
                     sr_notif_event_t event)
{
    const AaaNcHandler &handler = walk.handler;
    AAA_NC_DBG_OF(handler.function.confChanges, handler.text.entry, xpath, event);
    if (event != SR_EV_APPLY && event != SR_EV_ENABLED) {
        return 0;
    }
    sr_change_iter_t *iter = nullptr;
    int rc = sr_get_changes_iter(session, xpath, &iter);
    if (rc != SR_ERR_OK) {
        AAA_NC_ERR(handler.function.leafChangesParse, "Get changes iter for xpath %s failed: %s.",
                   xpath, sr_strerror(rc));
        return rc;
    }
    rc = leafChangesParse(walk, session, xpath, iter);
    if (!walk.keepsIter) {
        sr_free_change_iter(iter);
    }
    return rc;
}

void aaaNcKeyMissingLog(const AaaNcWalk &walk, const AaaNcChange &change, const char *printed)
{
    AAA_NC_ERR(walk.handler.function.oneLeafChangeParse, "Get value for key %s in xpath %s failed.",
               printed, change.value->xpath);
}

void aaaNcWalkParamSet(AaaNcWalk &walk, std::uint32_t eMsgType, std::uint32_t length,
                       const void *payload)
{
    aaaNcParamSet(eMsgType, walk.oper, length, payload, walk.block);
}

// The handler's result for the code of a refused request.
static int refusedResult(const AaaNcHandler &handler, int code)
{
    for (const int special : handler.refused.codes) {
        if (code == special) {
            return handler.refused.resultOfCodes;
        }
    }
    return handler.refused.result;
}

int aaaNcWalkSend(AaaNcWalk &walk)
{
    const AaaNcHandler &handler = walk.handler;
    const int rc = aaaNcCmfSendProc(walk.block);
    if (rc != 0) {
        AAA_NC_DBG(handler.function.oneLeafChangeParse, "Cmf recv decode error code=<%d>.", rc);
    }
    walk.block.header = {};
    return rc != 0 ? refusedResult(handler, rc) : 0;
}
