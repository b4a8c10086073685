// aaanc service, but for two threads that share a counter without a lock.
#include <thread>

#include "service.hpp"

namespace
{

int count = 0;

} // namespace

// As `aaanc service --socket PATH --json --hex --show-keys`.
int main(int /*argc*/, char **argv)
{
    aaanc::TerminationGuard guard;
    {
        const std::jthread other([] { ++count; });
        ++count;
    }
    aaanc::ServiceOptions options;
    options.socket = argv[3];
    options.output = {.json = true, .hex = true, .show_keys = true};
    return aaanc::serveAlone(options, guard);
}
