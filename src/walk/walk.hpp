// The walk over the changes of one callback, the same for every subtree.
//
// A subtree's callback makes an AaaNcWalk (with its own records beside it) and
// calls aaaNcChangesWalk(). The walk filters the event, takes the changes one
// after another, picks the value and the leaf name of each and hands it to the
// handler, frees what the platform gave, and stops at the first failure.
// Requests that were sent by then stay applied.
#pragma once

#include "aaa_nc/param.hpp"
#include "plugin/log.hpp"
#include "sysrepo.h"
#include "walk/checks.hpp"

struct AaaNcWalk;

// One change, as a handler sees it.
struct AaaNcChange {
    sr_change_oper_t oper; // created, modified or deleted
    sr_val_t *value;       // the new value, or the old one of a deletion
    const char *leaf;      // its last node, inside value->xpath
};

// Results of a callback that are the plug-in's own.
enum {
    AAA_NC_REFUSED = 1,   // a name, address or groups of no use
    AAA_NC_NO_LEAF = 5,   // no leaf name, or no list key
    AAA_NC_FAILED = 7,    // a failed step
    AAA_NC_BAD_CHANGE = 8 // neither created, modified nor deleted
};

// What tells one subtree's walk from another's.
struct AaaNcHandler {
    // The names of the operations, as its log lines print them.
    struct {
        const char *confChanges;        // the callback
        const char *leafChangesParse;   // over all changes
        const char *oneLeafChangeParse; // over one change, requests included
        const char *infoFill;           // filling the record; null where there is none
    } function;

    struct {
        AaaNcLogText<const char *, std::uint32_t> entry;                 // xpath, event
        AaaNcLogText<const char *, std::uint32_t, std::uint32_t> change; // xpath, type, operation
        AaaNcLogText<const char *> node;                                 // leaf name
        AaaNcLogText<const char *> noLeaf;                               // xpath
    } text;

    int noLeafResult;    // where a change has no leaf name
    int badChangeResult; // where it has no value for its operation; 0 skips it

    // Results for a request that the service refuses or that fails on its way. They
    // are the subtree's own, whatever the same numbers mean elsewhere.
    struct {
        int result;            // this one,
        int codes[2] = {};     // but for these codes (0: none) ...
        int resultOfCodes = 0; // ... that one
    } refused;

    // Handles one change. A result other than 0 ends the walk.
    int (*change)(AaaNcWalk &walk, const AaaNcChange &change);
    // Handles the end of the changes, with the walk's result; null for 0.
    int (*end)(AaaNcWalk &walk);
};

// The state of one callback.
struct AaaNcWalk {
    const AaaNcHandler &handler;
    AaaNcParam block{};                    // the request being built
    sr_change_oper_t oper = SR_OP_CREATED; // operation of the last change taken
    bool keepsIter = false;                // the iterator is not to be freed
};

// Texts that more than one handler uses.
#define AAA_NC_NO_LEAF_NAME AAA_NC_LOG_TEXT("Get last node name in xpath %s failed.")
#define AAA_NC_NO_NODE AAA_NC_LOG_TEXT("AAA get node failed, path: %s.")

// Runs a callback: returns its result.
int aaaNcChangesWalk(AaaNcWalk &walk, sr_session_ctx_t *session, const char *xpath,
                     sr_notif_event_t event);

// Logs that the change's xpath has no key; `printed` is its name in the line.
void aaaNcKeyMissingLog(const AaaNcWalk &walk, const AaaNcChange &change, const char *printed);

// Reads key `key` of list `list` from the change's xpath (aaaNcEntryKeyGet()).
// A missing one is logged under the name `printed`.
inline int aaaNcChangeKeyGet(const AaaNcWalk &walk, const AaaNcChange &change, const char *list,
                             const char *key, const char *printed, const char **value)
{
    const int rc = aaaNcEntryKeyGet(change.value->xpath, list, key, value);
    if (rc != 0) {
        aaaNcKeyMissingLog(walk, change, printed);
    }
    return rc;
}

// Sets the block with the operation of the last change (aaaNcParamSet()).
void aaaNcWalkParamSet(AaaNcWalk &walk, std::uint32_t eMsgType, std::uint32_t length,
                       const void *payload);

// Sends the block as it stands and clears its header. Returns 0, or the
// handler's result for the service's or the transport's code, which is logged.
int aaaNcWalkSend(AaaNcWalk &walk);
