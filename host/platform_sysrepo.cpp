// The sysrepo functions that a plug-in finds in its daemon.
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "delivery.hpp"
#include "hex.hpp"
#include "sysrepo.h"
#include "xpath.hpp"

int srp_ll_syslog = 0;

namespace
{

constexpr int kInvalidArgument = 1;

// What sr_strerror() says, by code.
constexpr std::array<const char *, 22> kErrors = {
    "Operation succeeded",
    "Invalid argument",
    "Not enough memory",
    "Item not found",
    "Sysrepo-internal error",
    "No more changes",
    "Input/output error",
    "The peer disconnected",
    "Malformed message",
    "Operation not supported",
    "Unknown model",
    "Unknown element",
    "Validation of the changes failed",
    "The operation failed",
    "The item already exists",
    "The item does not exist",
    "Operation not authorized",
    "Invalid user",
    "The resource is locked",
    "Timeout has expired",
    "A restart is needed",
    "Version mismatch",
};

template <typename T> T *allocate(std::size_t size)
{
    void *memory = std::calloc(1, size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return static_cast<T *>(memory);
}

char *copyText(const std::string &text)
{
    auto *copy = allocate<char>(text.size() + 1);
    text.copy(copy, text.size());
    return copy;
}

void setData(sr_val_t &target, const aaanc::Value &value)
{
    switch (value.type) {
    case SR_LIST_T:
    case SR_CONTAINER_T:
    case SR_CONTAINER_PRESENCE_T:
        break;
    case SR_BOOL_T:
        target.data.bool_val = value.text == "true";
        break;
    case SR_UINT8_T:
        target.data.uint8_val = static_cast<std::uint8_t>(std::stoul(*value.text));
        break;
    case SR_UINT16_T:
        target.data.uint16_val = static_cast<std::uint16_t>(std::stoul(*value.text));
        break;
    case SR_UINT32_T:
        target.data.uint32_val = static_cast<std::uint32_t>(std::stoul(*value.text));
        break;
    default:
        target.data.string_val = value.text ? copyText(*value.text) : nullptr;
    }
}

sr_val_t *makeValue(const std::optional<aaanc::Value> &value)
{
    if (!value) {
        return nullptr;
    }
    auto *made = allocate<sr_val_t>(sizeof(sr_val_t));
    made->type = value->type;
    if (value->xpath) {
        made->xpath = allocate<char>(aaanc::xpathBufferSize(*value->xpath));
        value->xpath->copy(made->xpath, value->xpath->size());
    }
    setData(*made, *value);
    return made;
}

} // namespace

int sr_subtree_change_subscribe(sr_session_ctx_t *session, const char *xpath,
                                sr_subtree_change_cb callback, void *private_ctx,
                                uint32_t /*priority*/, uint32_t opts,
                                sr_subscription_ctx_t **subscription)
{
    if (session == nullptr || xpath == nullptr || callback == nullptr || subscription == nullptr) {
        return kInvalidArgument;
    }
    session->delivery->subscribe({xpath, callback, private_ctx}, (opts & SR_SUBSCR_CTX_REUSE) != 0,
                                 subscription);
    return SR_ERR_OK;
}

int sr_unsubscribe(sr_session_ctx_t *session, sr_subscription_ctx_t *subscription)
{
    if (session == nullptr || !session->delivery->unsubscribe(subscription)) {
        return kInvalidArgument;
    }
    return SR_ERR_OK;
}

int sr_get_changes_iter(sr_session_ctx_t *session, const char *xpath, sr_change_iter_t **iter)
{
    if (session == nullptr || session->changes == nullptr || xpath == nullptr || iter == nullptr) {
        return kInvalidArgument;
    }
    auto made = std::make_unique<sr_change_iter_t>();
    made->session = session;
    made->changes = xpath == session->subtree ? *session->changes
                                              : aaanc::changesBelow(*session->changes, xpath);
    *iter = session->iterators.emplace_back(std::move(made)).get();
    return SR_ERR_OK;
}

int sr_get_change_next(sr_session_ctx_t *session, sr_change_iter_t *iter, sr_change_oper_t *oper,
                       sr_val_t **old_value, sr_val_t **new_value)
{
    if (iter == nullptr || oper == nullptr || old_value == nullptr || new_value == nullptr) {
        return kInvalidArgument;
    }
    if (iter->next == iter->changes.size()) {
        // The outputs stay as the last change left them, stale.
        if (iter->changes.empty()) {
            *old_value = nullptr;
            *new_value = nullptr;
        }
        return SR_ERR_NO_MORE_CHANGES;
    }
    if (session != nullptr && session->delivery != nullptr) {
        session->delivery->changeTaken();
    }
    const aaanc::Change change = iter->changes[iter->next++].read();
    *oper = change.oper;
    *old_value = makeValue(change.old_value);
    *new_value = makeValue(change.new_value);
    return SR_ERR_OK;
}

void sr_free_change_iter(sr_change_iter_t *iter)
{
    if (iter != nullptr) {
        std::erase_if(iter->session->iterators,
                      [iter](const auto &each) { return each.get() == iter; });
    }
}

void sr_free_val(sr_val_t *value)
{
    if (value == nullptr) {
        return;
    }
    if (aaanc::dataKind(value->type) == aaanc::DataKind::Text) {
        std::free(value->data.string_val);
    }
    std::free(value->xpath);
    std::free(value);
}

char *sr_xpath_node_name(const char *xpath)
{
    return xpath != nullptr ? const_cast<char *>(aaanc::xpathNodeName(xpath)) : nullptr;
}

char *sr_xpath_key_value(char *xpath, const char *node_name, const char *key_name,
                         sr_xpath_ctx_t * /*state*/)
{
    return xpath != nullptr ? aaanc::xpathKeyValue(xpath, node_name, key_name) : nullptr;
}

const char *sr_strerror(int code)
{
    const auto index = static_cast<std::size_t>(code);
    return code >= 0 && index < kErrors.size() ? kErrors[index] : "Unknown error";
}

int sr_convert_hexstring_to_string(const char *text, int size, char *out)
{
    if (text == nullptr || out == nullptr || size < 0) {
        return kInvalidArgument;
    }
    return aaanc::decodeHex(text, {out, static_cast<std::size_t>(size)}) ? SR_ERR_OK
                                                                         : kInvalidArgument;
}
