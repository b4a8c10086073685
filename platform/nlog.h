/* The device's log sink. C linkage; safe to call from several threads at once. */
#ifndef AAA_NC_PLATFORM_NLOG_H
#define AAA_NC_PLATFORM_NLOG_H

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Logs one line for `facility` and `module`. `severity_class` and `level` are
 * the platform's own codes. `format` is printf-style. The result is of no use.
 */
int NLOG_Send(int facility, const char *module, int severity_class, int level, const char *format,
              ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 5, 6)))
#endif
    ;

#ifdef __cplusplus
}
#endif

#endif
