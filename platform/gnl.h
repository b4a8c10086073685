/* The device's string library. C linkage. */
#ifndef AAA_NC_PLATFORM_GNL_H
#define AAA_NC_PLATFORM_GNL_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Copies `src` into the `size` bytes at `dst`, cut to fit and always terminated
 * (for a size above 0). Bytes behind the terminator keep what they held.
 * Returns the length of `src`.
 */
size_t gnl_strlcpy(char *dst, const char *src, size_t size);

#ifdef __cplusplus
}
#endif

#endif
