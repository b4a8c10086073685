#include "running_state.hpp"

#include <algorithm>

namespace aaanc
{

namespace
{

RunningState::Object objectOf(const Request &request)
{
    RunningState::Object object{request.type, {}};
    for (const Field &field : request.fields) {
        if (field.layout->role == FieldRole::Key) {
            object.second.push_back(fieldText(field));
        }
    }
    return object;
}

bool isZero(const Field &field)
{
    return field.text.empty() && field.number == 0;
}

} // namespace

bool isWithoutMeaning(const Request &request)
{
    constexpr std::uint32_t kDomain = 0;
    constexpr std::uint32_t kRadiusServer = 63;
    // A server group of an unknown type goes out as a block that was not filled.
    const bool unfilled = request.type == kDomain && request.length == 0;
    // A walk over no RADIUS changes ends with a record of nobody.
    const bool nobody = request.type == kRadiusServer && !request.fields.empty() &&
                        std::ranges::all_of(request.fields, isZero);
    return unfilled || nobody;
}

void RunningState::accept(const Request &request, std::size_t number)
{
    if (isWithoutMeaning(request)) {
        return;
    }
    if (request.set != 0) {
        objects_.insert_or_assign(objectOf(request), Kept{number, request});
    } else {
        objects_.erase(objectOf(request));
    }
}

} // namespace aaanc
