// Edits: reading a document, and applying it.
#include <cstdlib>
#include <string>

#include "changes.hpp"
#include "document.hpp"
#include "edit.hpp"
#include "input_error.hpp"
#include "targets.hpp"
#include "texts.hpp"

namespace aaanc::test::fuzz
{

namespace
{

// Something of what edits name, so that they find and miss.
constexpr const char *kBefore = R"({"orvek-aaa:sysAaa": {
  "aaaGlobal": {"startFailType": 1},
  "aaaSrcInterface": {"srcInterface": [{"srcInterfaceName": "vlan1", "vrfName": "v"}]},
  "aaaDomain": {"domainInfo": [{"domainName": "a"}, {"domainName": "b"}]},
  "aaaGroupVrf": {"serverGroup": [
    {"serverGroupType": "radius", "serverGroupName": "g", "vrfName": "v"}]}}})";

DataTree stateOf(const std::string &json)
{
    return applyEdit(schema(), {},
                     readDocument(schema(), "before.json", json, DocumentKind::Startup));
}

const DataTree &before()
{
    static const DataTree state = stateOf(kBefore);
    return state;
}

bool areSame(const DataTree &one, const DataTree &other)
{
    return lyd_compare_siblings(one.first(), other.first(), LYD_COMPARE_FULL_RECURSION) ==
           LY_SUCCESS;
}

std::string print(const DataTree &data)
{
    char *text = nullptr;
    lyd_print_mem(&text, data.first(), LYD_JSON, LYD_PRINT_WITHSIBLINGS);
    std::string result = text != nullptr ? text : "";
    std::free(text);
    return result;
}

// A state that edits made is one that a start-up configuration can make.
std::string stateFinding(const DataTree &after)
{
    if (!areSame(before(), stateOf(kBefore)))
        return "the state before has changed";
    const std::string printed = print(after);
    try {
        if (after.first() != nullptr && !areSame(after, stateOf(printed)))
            return "reads back as another: " + printed;
    } catch (const InputError &error) {
        return "does not read back: " + printed + ": " + error.what();
    }
    const bool changed = !changesBetween(before(), after).refs.empty();
    return changed || areSame(before(), after) ? "" : "a change is not told: " + printed;
}

std::string fuzzEdit(const std::string &name, const std::string &text)
{
    try {
        readDocument(schema(), name, text, DocumentKind::Startup);
    } catch (const InputError &error) {
        if (const std::string finding = errorFinding(error.what(), name, text); !finding.empty())
            return finding;
    }
    try {
        return stateFinding(
            applyEdit(schema(), before(), readDocument(schema(), name, text, DocumentKind::Edit)));
    } catch (const InputError &error) {
        return errorFinding(error.what(), name, text);
    }
}

} // namespace

std::string fuzzXmlEdit(Bytes bytes)
{
    return fuzzEdit("edit.xml", textOf(bytes));
}

std::string fuzzJsonEdit(Bytes bytes)
{
    return fuzzEdit("edit.json", textOf(bytes));
}

} // namespace aaanc::test::fuzz
