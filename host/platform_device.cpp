// The device's log sink and string library, as a plug-in finds them.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "gnl.h"
#include "nlog.h"
#include "printable.hpp"

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
    // Texts of a recording are in it, and may be anything.
    std::string_view text(line, static_cast<std::size_t>(length));
    text.remove_suffix(text.ends_with('\n') ? 1 : 0);
    std::fputs((aaanc::printable(text) + "\n").c_str(), stderr);
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
