#include "terminal.hpp"

#include <cstdlib>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

namespace aaanc
{

namespace
{

std::string_view environment(const char *name)
{
    const char *value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

bool isTerminal(std::FILE *output)
{
    return isatty(fileno(output)) != 0;
}

bool wantsColours(std::FILE *output)
{
    return isTerminal(output) && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

std::size_t widthOf(std::FILE *output)
{
    winsize size{};
    return isTerminal(output) && ioctl(fileno(output), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

} // namespace aaanc
