// What the AAA service has been told and has accepted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "messages.hpp"

namespace aaanc
{

class RunningState
{
public:
    // The message type, and the values of the key fields.
    using Object = std::pair<std::uint32_t, std::vector<std::string>>;

    // The last accepted set of an object.
    struct Kept {
        std::size_t number; // of the request, as the service counts them
        Request request;
    };

    // Takes an accepted request: a set makes or changes its object, an undo
    // takes the object away.
    void accept(const Request &request, std::size_t number);

    [[nodiscard]] const std::map<Object, Kept> &objects() const
    {
        return objects_;
    }

private:
    std::map<Object, Kept> objects_;
};

} // namespace aaanc
