#include "null_platform.hpp"

namespace aaanc::bench
{

namespace
{

struct {
    const CannedChange *begin;
    const CannedChange *end;
    const CannedChange *next;
    const CannedChange *current;
    char *const *next_key;
    std::size_t left;
} walk;

struct {
    const char *xpath;
    sr_subtree_change_cb callback;
} subscriptions[11];

std::size_t subscription_count = 0;
Observer looks_on = nullptr;

void note(const char *call, const void *bytes = nullptr, std::size_t length = 0)
{
    if (looks_on != nullptr)
        looks_on(call, bytes, length);
}

bool isSame(const char *a, const char *b)
{
    while (*a != '\0' && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}

// Anything that is not null.
void *someObject()
{
    return &walk;
}

} // namespace

void playCanned(const CannedChange *changes, std::size_t period, std::size_t count)
{
    walk = {changes, changes + period, changes, nullptr, nullptr, count};
}

void observe(Observer observer)
{
    looks_on = observer;
}

sr_subtree_change_cb subscribedCallback(const char *xpath)
{
    for (std::size_t i = 0; i < subscription_count; ++i)
        if (isSame(subscriptions[i].xpath, xpath))
            return subscriptions[i].callback;
    return nullptr;
}

} // namespace aaanc::bench

using namespace aaanc::bench;

int srp_ll_syslog = 0;

int sr_subtree_change_subscribe(sr_session_ctx_t * /*session*/, const char *xpath,
                                sr_subtree_change_cb callback, void * /*private_ctx*/,
                                uint32_t /*priority*/, uint32_t /*opts*/,
                                sr_subscription_ctx_t **subscription)
{
    subscriptions[subscription_count++] = {xpath, callback};
    *subscription = static_cast<sr_subscription_ctx_t *>(someObject());
    return 0;
}

int sr_unsubscribe(sr_session_ctx_t * /*session*/, sr_subscription_ctx_t * /*subscription*/)
{
    return 0;
}

int sr_get_changes_iter(sr_session_ctx_t * /*session*/, const char * /*xpath*/,
                        sr_change_iter_t **iter)
{
    note("sr_get_changes_iter");
    *iter = static_cast<sr_change_iter_t *>(someObject());
    return 0;
}

int sr_get_change_next(sr_session_ctx_t * /*session*/, sr_change_iter_t * /*iter*/,
                       sr_change_oper_t *oper, sr_val_t **old_value, sr_val_t **new_value)
{
    note("sr_get_change_next");
    if (walk.left == 0)
        return SR_ERR_NO_MORE_CHANGES;
    --walk.left;
    walk.current = walk.next;
    walk.next_key = walk.current->keys;
    if (++walk.next == walk.end)
        walk.next = walk.begin;
    *oper = SR_OP_CREATED;
    *old_value = nullptr;
    *new_value = const_cast<sr_val_t *>(&walk.current->value);
    return 0;
}

void sr_free_change_iter(sr_change_iter_t * /*iter*/)
{
    note("sr_free_change_iter");
}

void sr_free_val(sr_val_t * /*value*/)
{
    note("sr_free_val");
}

char *sr_xpath_node_name(const char * /*xpath*/)
{
    note("sr_xpath_node_name");
    return walk.current->leaf;
}

char *sr_xpath_key_value(char * /*xpath*/, const char * /*node_name*/, const char * /*key_name*/,
                         sr_xpath_ctx_t * /*state*/)
{
    note("sr_xpath_key_value");
    return *walk.next_key++;
}

const char *sr_strerror(int /*code*/)
{
    return "";
}

int sr_convert_hexstring_to_string(const char * /*text*/, int /*size*/, char *out)
{
    note("sr_convert_hexstring_to_string");
    for (std::size_t i = 0; i < sizeof(kDecodedKey); ++i)
        out[i] = kDecodedKey[i];
    return 0;
}

size_t gnl_strlcpy(char *dst, const char *src, size_t size)
{
    note("gnl_strlcpy");
    size_t length = 0;
    for (; src[length] != '\0'; ++length)
        if (length + 1 < size)
            dst[length] = src[length];
    dst[length < size ? length : size - 1] = '\0';
    return length;
}

int NLOG_Send(int /*facility*/, const char * /*module*/, int /*severity_class*/, int /*level*/,
              const char * /*format*/, ...)
{
    note("NLOG_Send");
    return 0;
}

int CMF_ClientServiceReg(const char * /*service*/, const void * /*record*/)
{
    return 0;
}

void *CMF_ClientContextInit(const char * /*service*/, uint32_t /*client*/, uint32_t /*third*/)
{
    note("CMF_ClientContextInit");
    return someObject();
}

int CMF_ClientContextObjSet(void * /*ctx*/, const void *record)
{
    note("CMF_ClientContextObjSet", record, 12);
    return 0;
}

int CMF_ClientParamEncode(void * /*ctx*/, uint32_t /*kind*/, uint32_t length, const void *data)
{
    note("CMF_ClientParamEncode", data, length);
    return 0;
}

int CMF_ClientRequestSend(void * /*ctx*/)
{
    note("CMF_ClientRequestSend");
    return 0;
}

int CMF_ClientResponseRecv(void * /*ctx*/)
{
    note("CMF_ClientResponseRecv");
    return 0;
}

int CMF_ClientParamDecode(void * /*ctx*/, uint32_t *kind, uint32_t *length, void **data)
{
    static uint32_t accepted[2] = {0, 0}; // result, length of data
    note("CMF_ClientParamDecode");
    *kind = 0;
    *length = sizeof(accepted);
    *data = accepted;
    return 0;
}

void CMF_ClientContextClose(void * /*ctx*/)
{
    note("CMF_ClientContextClose");
}
