#include "standard_streams.hpp"

#include <atomic>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace aaanc
{

namespace
{

constexpr int kOutputLost = 2;

std::atomic<int> first_error = 0; // errno of the first write that failed

} // namespace

void holdClosedStreams()
{
    // open() takes the lowest number that is free. The access is the wrong one, so
    // that whoever uses the stream is told.
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(number, F_GETFD) < 0) {
            open("/dev/null", number == STDIN_FILENO ? O_WRONLY : O_RDONLY); // NOLINT: kept open
        }
    }
}

void writeOutput(std::FILE *output, std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), output) != text.size() ||
        std::fflush(output) != 0) {
        int none = 0;
        first_error.compare_exchange_strong(none, errno);
    }
}

int endOutput(int status)
{
    writeOutput(stdout, "");
    if (first_error == 0) {
        return status;
    }
    if (first_error != EPIPE) {
        tellError(std::string("standard output: ") + std::strerror(first_error));
    }
    return status != 0 ? status : kOutputLost;
}

void tellError(const std::string &message)
{
    std::fputs(("aaanc: " + message + "\n").c_str(), stderr);
}

} // namespace aaanc
