#include "request_text.hpp"

#include <iterator>
#include <vector>

#include <fmt/format.h>

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

// A group of a method list in one line, since there are four of them; those that
// are not set together in one. Goes on from `field`, the type of a group.
std::string groupRow(const Request &request, std::vector<Field>::const_iterator &field)
{
    const auto is_unset = [&](auto each) {
        return std::distance(each, request.fields.end()) >= 2 && isGroupType(*each->layout) &&
               each->number == 0 && std::next(each)->text.empty();
    };
    const auto first = field;
    const std::string_view name = first->layout->name;
    std::string title(name.substr(0, name.find('.')));
    field += 2;
    if (is_unset(first) && field != request.fields.end() && is_unset(field)) {
        while (field != request.fields.end() && is_unset(field)) {
            field += 2;
        }
        const std::string_view last = std::prev(field, 2)->layout->name;
        title += fmt::format(" to {}", last.substr(last.find('['), 3));
    }
    return requestRow(title, fmt::format("groupType {} ({}), groupName {}", first->number,
                                         groupTypeMeaning(request, first->number),
                                         textValue(*std::next(first), false)));
}

std::string fieldRows(const Request &request, bool show_keys)
{
    std::string text;
    for (auto field = request.fields.begin(); field != request.fields.end();) {
        if (isGroupType(*field->layout) && std::next(field) != request.fields.end()) {
            text += groupRow(request, field);
        } else {
            text += requestRow(field->layout->name, textValue(*field, show_keys));
            ++field;
        }
    }
    return text;
}

} // namespace

std::string requestRow(std::string_view name, std::string_view value)
{
    constexpr std::size_t kNameWidth = 20;
    return fmt::format("      {:<{}} {}\n", name, kNameWidth, value);
}

std::string requestRows(const Request &request, bool show_keys)
{
    std::string text = !isWithoutMeaning(request) ? fieldRows(request, show_keys)
                       : request.fields.empty()   ? requestRow("all fields", "missing")
                                                  : requestRow("all fields", "zero");
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
