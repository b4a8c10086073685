// What a request costs before anybody works on it: one exchange over a Unix
// socket between two threads.
#pragma once

#include <cstddef>
#include <thread>

namespace aaanc::bench
{

// A service that answers every request with "accepted".
class Service
{
public:
    Service();
    ~Service();
    Service(const Service &) = delete;
    Service &operator=(const Service &) = delete;

    // Connects, sends `length` bytes (at most 1024), takes the answer and closes.
    bool roundTrip(std::size_t length) const;

private:
    int listener_;
    std::thread thread_;
};

} // namespace aaanc::bench
