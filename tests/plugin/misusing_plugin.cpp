// A plug-in whose callbacks misuse the platform, each event in its own way. The
// numbers are those of misuse_test.cpp.
#include "platform/cmf.h"
#include "platform/gnl.h"
#include "platform/nlog.h"
#include "platform/sysrepo.h"

#include <cstdlib>
#include <cstring>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace
{

constexpr char kFormat[] = "[%s] (%s:%d) [AAA-NC]text";

void *openContext()
{
    return CMF_ClientContextInit("aaa", 145, 1);
}

int misuse(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event, void *)
{
    sr_change_iter_t *iter = nullptr;
    sr_change_oper_t oper = 0;
    sr_val_t *old_value = nullptr;
    sr_val_t *value = nullptr;
    sr_xpath_ctx_t state = {};
    char buffer[8] = {};
    static char block[2000];
    auto *stranger = reinterpret_cast<sr_session_ctx_t *>(buffer);

    sr_get_changes_iter(event == 1 ? stranger : session, xpath, &iter);
    if (event == 2)
        sr_get_changes_iter(session, xpath, &iter);
    sr_get_change_next(event == 3 ? stranger : session, iter, &oper, &old_value, &value);
    switch (event) {
    case 4:
        sr_free_val(value);
        sr_free_val(value);
        return 0;
    case 5:
        sr_get_change_next(session, iter, &oper, &old_value, &value);
        sr_free_val(value); // the end of the changes: the output means nothing
        return 0;
    case 6: {
        const char *name = value->xpath;
        sr_free_val(value);
        sr_xpath_node_name(name);
        return 0;
    }
    case 7:
        sr_xpath_node_name(nullptr);
        return 0;
    case 8:
        sr_xpath_key_value(buffer, "c", "k", &state);
        return 0;
    case 9:
        state.replaced_char = 1;
        sr_xpath_key_value(value->xpath, "c", "k", &state);
        return 0;
    case 10:
        sr_xpath_key_value(value->xpath, "c", "k", &state);
        sr_xpath_key_value(value->xpath, "c", "k", &state);
        return 0;
    case 11:
        sr_free_change_iter(iter);
        sr_free_change_iter(iter);
        return 0;
    case 12:
        sr_free_change_iter(iter);
        sr_get_change_next(session, iter, &oper, &old_value, &value);
        return 0;
    case 13:
        buffer[7] = 1;
        sr_convert_hexstring_to_string("61", sizeof buffer, buffer);
        return 0;
    case 14:
        sr_convert_hexstring_to_string(nullptr, sizeof buffer, buffer);
        return 0;
    case 15:
        gnl_strlcpy(buffer, nullptr, sizeof buffer);
        return 0;
    case 16:
        NLOG_Send(483, "PLUGIN", 7, 3, "[%s] (%s:%d) text", "DBG", "f", 1);
        return 0;
    case 17:
        NLOG_Send(483, "PLUGIN", 8, 3, kFormat, "DBG", "f", 1);
        return 0;
    case 18:
        NLOG_Send(483, "PLUGIN", 8, 4, kFormat, "ERR", "f", 0);
        return 0;
    case 19:
        NLOG_Send(483, "PLUGIN", 8, 4, "[%s] (%s:%d) [AAA-NC]%x", "ERR", "f", 1, 1U);
        return 0;
    case 20:
        openContext();
        return 0;
    case 21:
        openContext();
        CMF_ClientContextClose(openContext());
        return 0;
    case 22: {
        void *context = openContext();
        CMF_ClientContextClose(context);
        CMF_ClientRequestSend(context);
        return 0;
    }
    case 23: {
        void *context = openContext();
        CMF_ClientContextClose(context);
        CMF_ClientContextClose(context);
        return 0;
    }
    case 24: {
        void *context = openContext();
        CMF_ClientParamEncode(context, 0, 1025, block);
        CMF_ClientContextClose(context);
        return 0;
    }
    case 25: {
        void *context = openContext();
        void *data = nullptr;
        uint32_t kind = 0;
        uint32_t length = 1;
        CMF_ClientParamDecode(context, &kind, &length, &data);
        CMF_ClientContextClose(context);
        return 0;
    }
    case 26: {
        char *volatile copy = strdup("text"); // volatile: or it would be left out
        std::free(copy);
        return 0;
    }
    default:
        return 0;
    }
}

// A callback of its own for each subscription.
template <int Row>
int misuseOf(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event, void *context)
{
    return misuse(session, xpath, event, context);
}

} // namespace

EXPORTED int sr_plugin_init_cb(sr_session_ctx_t *session, void **)
{
    sr_subscription_ctx_t *subscription = nullptr;
    const sr_subtree_change_cb callbacks[] = {misuseOf<0>, misuseOf<1>, misuseOf<2>, misuseOf<3>,
                                              misuseOf<4>, misuseOf<5>, misuseOf<6>, misuseOf<7>,
                                              misuseOf<8>, misuseOf<9>, misuseOf<10>};
    for (const sr_subtree_change_cb callback : callbacks)
        sr_subtree_change_subscribe(session, "/m:c", callback, nullptr, 0, 0, &subscription);
    return 0;
}

EXPORTED void sr_plugin_cleanup_cb(sr_session_ctx_t *, void *) {}
