#include "floor.hpp"

#include "cmf.h"
#include "gnl.h"
#include "sysrepo.h"

#include <cstring>

namespace aaanc::bench
{

namespace
{

int exchange(void *ctx, const AaaNcParam &request)
{
    const std::uint32_t object[3] = {request.header.eMsgType, request.header.bDoFlag != 0 ? 3U : 4U,
                                     0};
    int rc = CMF_ClientContextObjSet(ctx, object);
    if (rc != 0)
        return rc;
    rc = CMF_ClientParamEncode(ctx, 0, request.header.length + 12, &request);
    if (rc != 0)
        return rc;
    rc = CMF_ClientRequestSend(ctx);
    if (rc != 0)
        return rc;
    rc = CMF_ClientResponseRecv(ctx);
    if (rc != 0)
        return rc;
    std::uint32_t kind = 0;
    std::uint32_t length = 0;
    void *data = nullptr;
    rc = CMF_ClientParamDecode(ctx, &kind, &length, &data);
    if (rc != 0)
        return rc;
    return *static_cast<const int *>(data);
}

int send(const AaaNcParam &request)
{
    void *ctx = CMF_ClientContextInit("aaa", 145, 1);
    if (ctx == nullptr)
        return 1;
    const int rc = exchange(ctx, request);
    CMF_ClientContextClose(ctx);
    return rc;
}

// The change at hand.
struct Change {
    const sr_val_t *value;
    std::size_t place; // among the changes of its entry
    bool is_first;     // of the walk
};

// The requests, one after another and from the start again.
class Ready
{
public:
    explicit Ready(Requests all) : all_(all) {}

    int sendNext()
    {
        const AaaNcParam &request = all_[next_];
        next_ = next_ + 1 < all_.size() ? next_ + 1 : 0;
        return send(request);
    }

private:
    Requests all_;
    std::size_t next_ = 0;
};

// What a loop does that cannot know which leaf comes next.
bool isAmong(const LeafNames &names, const char *leaf)
{
    for (const char *name : names)
        if (std::strcmp(leaf, name) == 0)
            return true;
    return false;
}

// Keeps the comparisons from being optimised away.
std::size_t unknown_leaves = 0;

// Hands each change to `on_change`; entries have `Changes` of them each. `on_end`
// has the last word.
template <std::size_t Changes, typename OnChange, typename OnEnd>
int walk(const char *xpath, const LeafNames *names, OnChange on_change, OnEnd on_end)
{
    sr_change_iter_t *iter = nullptr;
    int rc = sr_get_changes_iter(nullptr, xpath, &iter);
    if (rc != 0)
        return rc;
    bool is_first = true;
    for (std::size_t place = 0; rc == 0; place = place + 1 < Changes ? place + 1 : 0) {
        sr_change_oper_t oper = 0;
        sr_val_t *old_value = nullptr;
        sr_val_t *new_value = nullptr;
        rc = sr_get_change_next(nullptr, iter, &oper, &old_value, &new_value);
        if (rc == SR_ERR_NO_MORE_CHANGES) {
            rc = on_end();
            break;
        }
        if (rc != 0)
            break;
        const char *leaf = sr_xpath_node_name(new_value->xpath);
        if (names != nullptr && !isAmong(*names, leaf))
            ++unknown_leaves;
        rc = on_change(Change{new_value, place, is_first});
        is_first = false;
        sr_free_val(old_value);
        sr_free_val(new_value);
    }
    sr_free_change_iter(iter);
    return rc;
}

template <std::size_t Changes, typename OnChange>
int walk(const char *xpath, const LeafNames *names, OnChange on_change)
{
    return walk<Changes>(xpath, names, on_change, [] { return 0; });
}

const char *key(const Change &change)
{
    sr_xpath_ctx_t state{};
    return sr_xpath_key_value(change.value->xpath, "", "", &state);
}

void decode(const Change &change)
{
    char decoded[259];
    sr_convert_hexstring_to_string(change.value->data.string_val, sizeof(decoded), decoded);
}

// One that sends when the next entry begins, and at the end.
template <std::size_t Changes>
int methodList(const char *xpath, Requests requests, const LeafNames *names)
{
    Ready ready(requests);
    return walk<Changes>(
        xpath, names,
        [&](const Change &change) {
            return change.place == 0 && !change.is_first ? ready.sendNext() : 0;
        },
        [&] { return ready.sendNext(); });
}

} // namespace

int floorGlobal(const char *xpath, Requests requests, const LeafNames *names)
{
    Ready ready(requests);
    return walk<2>(xpath, names, [&](const Change &) { return ready.sendNext(); });
}

int floorSrcInterface(const char *xpath, Requests requests, const LeafNames *names)
{
    Ready ready(requests);
    return walk<3>(xpath, names, [&](const Change &change) {
        char copied[40];
        if (change.place != 0)
            gnl_strlcpy(copied, change.value->data.string_val, sizeof(copied));
        return change.place == 2 ? ready.sendNext() : 0;
    });
}

int floorServerGroup(const char *xpath, Requests requests, const LeafNames *names)
{
    Ready ready(requests);
    return walk<3>(xpath, names, [&](const Change &change) {
        key(change);
        key(change);
        return change.place == 1 ? ready.sendNext() : 0;
    });
}

int floorServerGroupVrf(const char *xpath, Requests requests, const LeafNames *names)
{
    Ready ready(requests);
    return walk<4>(xpath, names, [&](const Change &change) {
        char copied[33];
        key(change);
        gnl_strlcpy(copied, key(change), sizeof(copied));
        if (change.place != 3)
            return 0;
        gnl_strlcpy(copied, change.value->data.string_val, sizeof(copied));
        return ready.sendNext();
    });
}

int floorDomain(const char *xpath, Requests requests, const LeafNames *names)
{
    Ready ready(requests);
    return walk<2>(xpath, names, [&](const Change &change) {
        key(change);
        return change.place == 1 ? ready.sendNext() : 0;
    });
}

int floorRadius(const char *xpath, Requests requests, const LeafNames *names)
{
    Ready ready(requests);
    return walk<8>(
        xpath, names,
        [&](const Change &change) {
            char copied[48];
            key(change);
            key(change);
            gnl_strlcpy(copied, key(change), sizeof(copied));
            gnl_strlcpy(copied, key(change), 33);
            const int rc = change.place == 0 && !change.is_first ? ready.sendNext() : 0;
            if (change.place == 6)
                decode(change);
            return rc;
        },
        [&] { return ready.sendNext(); });
}

int floorTacacs(const char *xpath, Requests requests, const LeafNames *names)
{
    Ready ready(requests);
    return walk<7>(xpath, names, [&](const Change &change) {
        if (change.place == 5)
            decode(change);
        return change.place == 6 ? ready.sendNext() : 0;
    });
}

int floorDomainAuthen(const char *xpath, Requests requests, const LeafNames *names)
{
    return methodList<9>(xpath, requests, names);
}

int floorDomainAccount(const char *xpath, Requests requests, const LeafNames *names)
{
    return methodList<10>(xpath, requests, names);
}

} // namespace aaanc::bench
