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

} // namespace

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
