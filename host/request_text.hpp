// A request by name, as text and as JSON. Shared keys are "****" unless they are
// to be shown.
#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "messages.hpp"

namespace aaanc
{

// A line "NAME  VALUE" below a request's title.
std::string requestRow(std::string_view name, std::string_view value);
// A line for each field, and one for each problem.
std::string requestRows(const Request &request, bool show_keys);
// Adds the members that tell of a request to `object`.
void addRequest(nlohmann::ordered_json &object, const Request &request, bool show_keys);

} // namespace aaanc
