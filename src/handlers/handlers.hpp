// The callbacks of the subscribed subtrees, in the order of their subscription.
// Each is an sr_subtree_change_cb: it returns 0, or a code that sysrepo reports.
#pragma once

#include "sysrepo.h"

int aaaNcGlobalConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                           void *private_ctx);
int aaaNcSrcInterfaceConfChanges(sr_session_ctx_t *session, const char *xpath,
                                 sr_notif_event_t event, void *private_ctx);
int aaaNcServerGroupConfChanges(sr_session_ctx_t *session, const char *xpath,
                                sr_notif_event_t event, void *private_ctx);
int aaaNcServerGroupVrfConfChanges(sr_session_ctx_t *session, const char *xpath,
                                   sr_notif_event_t event, void *private_ctx);
int aaaNcDomainConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                           void *private_ctx);
int aaaNcRadiusIpv4ConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                               void *private_ctx);
int aaaNcRadiusIpv6ConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                               void *private_ctx);
int aaaNctacacsIpv4ConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                               void *private_ctx);
int aaaNctacacsIpv6ConfChanges(sr_session_ctx_t *session, const char *xpath, sr_notif_event_t event,
                               void *private_ctx);
int aaaNcDomainAuthenConfChanges(sr_session_ctx_t *session, const char *xpath,
                                 sr_notif_event_t event, void *private_ctx);
int aaaNcDomainAccountConfChanges(sr_session_ctx_t *session, const char *xpath,
                                  sr_notif_event_t event, void *private_ctx);
