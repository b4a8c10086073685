/*
 * The sysrepo plug-in API of the 0.7 series, as the device's build of it
 * delivers it: the calls, types and values that the plug-in relies on.
 *
 * Two things differ from the published 0.7 headers: a value's xpath is the
 * first word of sr_val_t and its data starts at byte 16, and
 * sr_get_change_next() reports the end of the changes with 5.
 *
 * Everything has C linkage. Enumerations are plain 32-bit integers with named
 * values, so that a value outside the named ones (an operation of 7, say) is an
 * ordinary number and not undefined behaviour.
 */
#ifndef AAA_NC_PLATFORM_SYSREPO_H
#define AAA_NC_PLATFORM_SYSREPO_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define AAA_NC_ALIGNED_8 alignas(8)
extern "C" {
#else
#define AAA_NC_ALIGNED_8 _Alignas(8)
#endif

/* Opaque objects of the platform. */
typedef struct sr_session_ctx_s sr_session_ctx_t;
typedef struct sr_subscription_ctx_s sr_subscription_ctx_t;
typedef struct sr_change_iter_s sr_change_iter_t;

/* Result codes, 0 for success. The plug-in passes others through unread. */
enum {
    SR_ERR_OK = 0,
    SR_ERR_NO_MORE_CHANGES = 5 /* sr_get_change_next(): no change is left */
};

/* Why a callback is called: the stage of the commit. */
typedef uint32_t sr_notif_event_t;
enum {
    SR_EV_VERIFY = 0, /* the commit may still be refused */
    SR_EV_APPLY = 1,  /* the commit has been taken */
    SR_EV_ABORT = 2,  /* some subscriber refused the commit */
    SR_EV_ENABLED = 3 /* the data that exist when the subscription is made */
};

/* What happened to a node. */
typedef uint32_t sr_change_oper_t;
enum {
    SR_OP_CREATED = 0,  /* no old value */
    SR_OP_MODIFIED = 1, /* both values */
    SR_OP_DELETED = 2,  /* no new value */
    SR_OP_MOVED = 3
};

/* Subscription options. */
enum {
    SR_SUBSCR_DEFAULT = 0,  /* open a subscription context */
    SR_SUBSCR_CTX_REUSE = 1 /* add to the context passed in */
};

/* Types of a value. */
typedef uint32_t sr_type_t;
enum {
    SR_LIST_T = 2,
    SR_CONTAINER_T = 3,
    SR_CONTAINER_PRESENCE_T = 4,
    SR_BOOL_T = 9,
    SR_ENUM_T = 12,
    SR_STRING_T = 18,
    SR_UINT8_T = 19,
    SR_UINT16_T = 20,
    SR_UINT32_T = 21
};

/*
 * The value of one node. The platform owns it and every string in it; it is
 * given back with sr_free_val(). The data are at byte 16 on 32-bit and 64-bit
 * targets alike.
 */
typedef struct sr_val_s {
    char *xpath;    /* instance path, keys as predicates in key order */
    sr_type_t type; /* tells which member of data holds the value */
    bool dflt;      /* the value is the schema's default */
    union {
        AAA_NC_ALIGNED_8 char *string_val; /* NUL-terminated */
        bool bool_val;
        uint8_t uint8_val;
        uint16_t uint16_val;
        uint32_t uint32_val;
        uint64_t uint64_val;
    } data;
} sr_val_t;

/* Parsing state of the xpath helpers; zeroed before its first use. */
typedef struct sr_xpath_ctx_s {
    char *begining;
    char *current_node;
    char *replaced_position;
    uintptr_t replaced_char;
} sr_xpath_ctx_t;

/*
 * Called for every commit stage that touches a subscribed subtree, on a
 * notification thread of the platform. `session` and `xpath` (the subscribed
 * one) are lent for the call. Returns SR_ERR_OK or an error code.
 */
typedef int (*sr_subtree_change_cb)(sr_session_ctx_t *session, const char *xpath,
                                    sr_notif_event_t event, void *private_ctx);

/*
 * Subscribes `callback` to changes at `xpath` and below. With
 * SR_SUBSCR_CTX_REUSE the subscription joins *subscription, else a new context
 * is stored there. `callback` may run before this call returns. Returns
 * SR_ERR_OK or an error code.
 */
int sr_subtree_change_subscribe(sr_session_ctx_t *session, const char *xpath,
                                sr_subtree_change_cb callback, void *private_ctx, uint32_t priority,
                                uint32_t opts, sr_subscription_ctx_t **subscription);

/* Ends every subscription of the context and frees it. */
int sr_unsubscribe(sr_session_ctx_t *session, sr_subscription_ctx_t *subscription);

/*
 * Opens an iterator over the changes at `xpath` and below. On success the
 * caller owns *iter and frees it with sr_free_change_iter().
 */
int sr_get_changes_iter(sr_session_ctx_t *session, const char *xpath, sr_change_iter_t **iter);

/*
 * Takes the next change. On success the caller owns both values (either may be
 * null) and frees them with sr_free_val(). On any other result, the end of the
 * changes included, the three outputs mean nothing.
 */
int sr_get_change_next(sr_session_ctx_t *session, sr_change_iter_t *iter, sr_change_oper_t *oper,
                       sr_val_t **old_value, sr_val_t **new_value);

/* Frees an iterator. */
void sr_free_change_iter(sr_change_iter_t *iter);

/* Frees a value; null is fine. */
void sr_free_val(sr_val_t *value);

/* The last node of `xpath`, predicates included, or null; points into `xpath`. */
char *sr_xpath_node_name(const char *xpath);

/*
 * The value of key `key_name` of list node `node_name`, or null. It points into
 * `xpath`, which may be cut with a NUL behind the key. Keys of one xpath can be
 * read one after another in any order, each with a fresh state.
 */
char *sr_xpath_key_value(char *xpath, const char *node_name, const char *key_name,
                         sr_xpath_ctx_t *state);

/* A static text for a result code. */
const char *sr_strerror(int code);

/*
 * The device's own addition: decodes hexadecimal `text` into `out`, which holds
 * `size` bytes. Returns 0, or non-zero when it cannot.
 */
int sr_convert_hexstring_to_string(const char *text, int size, char *out);

/* The plug-in daemon's log level: 0 none, 1 errors, 2 warnings, 3 information, 4 debug. */
extern int srp_ll_syslog;

#ifdef __cplusplus
}

static_assert(offsetof(sr_val_t, xpath) == 0, "the first word is the xpath");
static_assert(offsetof(sr_val_t, type) == sizeof(void *), "the second word is the type");
static_assert(sizeof(sr_type_t) == 4, "types are 32-bit");
static_assert(sizeof(sr_val_t().dflt) == 1, "a flag is one byte");
static_assert(offsetof(sr_val_t, data) == 16, "the data are at byte 16");
static_assert(sizeof(sr_val_t) == 24, "a value is 24 bytes");
static_assert(sizeof(sr_xpath_ctx_t) == 4 * sizeof(void *), "the state is four words");
#endif

#endif
