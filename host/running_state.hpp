// What the AAA service has been told and has accepted.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "messages.hpp"

namespace aaanc
{

// A request by design without meaning: it is accepted and changes nothing.
bool isWithoutMeaning(const Request &request);

class RunningState
{
public:
    // The message type, and the values of the key fields.
    using Object = std::pair<std::uint32_t, std::vector<std::string>>;

    // Takes an accepted request: a set makes or changes its object, an undo
    // takes the object away.
    void accept(const Request &request);

    // The last accepted set of each object that there is.
    [[nodiscard]] const std::map<Object, Request> &objects() const
    {
        return objects_;
    }

private:
    std::map<Object, Request> objects_;
};

} // namespace aaanc
