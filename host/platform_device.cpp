// The device's log sink and string library, as a plug-in finds them.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "gnl.h"
#include "nlog.h"

int NLOG_Send(int /*facility*/, const char * /*module*/, int /*severity_class*/, int /*level*/,
              const char *format, ...)
{
    // Written whole, so that lines of several threads do not mix.
    std::va_list arguments;
    va_start(arguments, format);
    char *line = nullptr;
    const int length = vasprintf(&line, format, arguments);
    va_end(arguments);
    if (length < 0) {
        return -1;
    }
    std::fprintf(stderr, length > 0 && line[length - 1] == '\n' ? "%s" : "%s\n", line);
    std::free(line);
    return 0;
}

size_t gnl_strlcpy(char *dst, const char *src, size_t size)
{
    const std::size_t length = std::strlen(src);
    if (size > 0) {
        const std::size_t copied = length < size ? length : size - 1;
        std::memcpy(dst, src, copied);
        dst[copied] = '\0';
    }
    return length;
}
