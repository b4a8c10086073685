/*
 * CMF client library: request/response messaging between the device's
 * processes. C linkage. Codes are 0 for success; others are passed through.
 */
#ifndef AAA_NC_PLATFORM_CMF_H
#define AAA_NC_PLATFORM_CMF_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* CMF_ClientRequestSend(): the system is short of memory. */
enum { CMF_NO_MEMORY = 5 };

/* Registers this process as a client of `service`. `record` is two 32-bit words, read during the
 * call. */
int CMF_ClientServiceReg(const char *service, const void *record);

/*
 * Opens a context for one request to `service`. Returns null on failure. The
 * caller owns the context and ends it with CMF_ClientContextClose().
 */
void *CMF_ClientContextInit(const char *service, uint32_t client, uint32_t third);

/* Names the object of the request. `record` is 12 bytes, read during the call. */
int CMF_ClientContextObjSet(void *ctx, const void *record);

/* Puts `length` bytes at `data` into the request, as parameter `kind`; copied during the call. */
int CMF_ClientParamEncode(void *ctx, uint32_t kind, uint32_t length, const void *data);

/* Sends the request; CMF_NO_MEMORY where memory is low. */
int CMF_ClientRequestSend(void *ctx);

/* Waits for the reply, as long as the library's own receive time limit lets it. */
int CMF_ClientResponseRecv(void *ctx);

/*
 * Decodes the reply's parameter. *data points at *length bytes that the context
 * owns, valid until it is closed; it may be null.
 */
int CMF_ClientParamDecode(void *ctx, uint32_t *kind, uint32_t *length, void **data);

/* Ends the context, whatever has become of the request. */
void CMF_ClientContextClose(void *ctx);

#ifdef __cplusplus
}
#endif

#endif
