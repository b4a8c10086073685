#include "request_text.hpp"

#include <fmt/format.h>

#include "running_state.hpp"

namespace aaanc
{

namespace
{

using Json = nlohmann::ordered_json;

constexpr const char *kHidden = "****";

bool isHidden(const Field &field, bool show_keys)
{
    return field.layout->role == FieldRole::Secret && !show_keys && !field.text.empty();
}

std::string textValue(const Field &field, bool show_keys)
{
    if (field.layout->kind != FieldKind::Text) {
        return fieldText(field);
    }
    return isHidden(field, show_keys) ? kHidden : fmt::format("\"{}\"", fieldText(field));
}

Json jsonValue(const Field &field, bool show_keys)
{
    if (field.layout->kind == FieldKind::Number) {
        return field.number;
    }
    return isHidden(field, show_keys) ? kHidden : field.text;
}

} // namespace

std::string requestRow(std::string_view name, std::string_view value)
{
    constexpr std::size_t kNameWidth = 20;
    return fmt::format("      {:<{}} {}\n", name, kNameWidth, value);
}

std::string requestRows(const Request &request, bool show_keys)
{
    std::string text;
    for (const Field &field : request.fields) {
        text += requestRow(field.layout->name, textValue(field, show_keys));
    }
    for (const std::string &problem : request.problems) {
        text += requestRow("problem", problem);
    }
    return text;
}

void addRequest(Json &object, const Request &request, bool show_keys)
{
    object["type"] = request.type;
    object["meaning"] = request.layout != nullptr ? Json(request.layout->meaning) : Json();
    object["operation"] = request.set != 0 ? "set" : "undo";
    object["length"] = request.length;
    object["without_meaning"] = isWithoutMeaning(request);
    object["fields"] = Json::object();
    for (const Field &field : request.fields) {
        object["fields"][std::string(field.layout->name)] = jsonValue(field, show_keys);
    }
    object["problems"] = request.problems;
}

} // namespace aaanc
