// Behaviours of the global settings, the source interface, the server groups,
// their VRF bindings and the domains.
#include "coverage.hpp"

#include <algorithm>

namespace aaanc::test::model
{
namespace
{

constexpr std::uint32_t kSet = 1;
constexpr std::uint32_t kUndo = 0;

// Payload offsets.
constexpr std::size_t kVrfOfInterface = 40;
constexpr std::size_t kGroupOfBinding = 5;
constexpr std::size_t kVrfOfRadiusBinding = 56;
constexpr std::size_t kVrfOfTacacsBinding = 48;
constexpr std::size_t kConfirm = 64;

bool only(const Story &s, const char *leaf)
{
    return !s.taken.empty() && std::all_of(s.taken.begin(), s.taken.end(),
                                           [=](const Taken &taken) { return taken.leaf == leaf; });
}

bool takenText(const Story &s, const char *leaf, std::size_t low, std::size_t high)
{
    return std::any_of(s.taken.begin(), s.taken.end(), [=](const Taken &taken) {
        return taken.leaf == leaf && taken.text.size() >= low && taken.text.size() <= high;
    });
}

bool sentOfLength(const Story &s, std::size_t offset, std::size_t length)
{
    return std::any_of(s.requests.begin(), s.requests.end(),
                       [=](const Sent &request) { return request.text(offset).size() == length; });
}

// The last change taken is under an entry whose key holds this.
bool endedUnderKey(const Story &s, const std::string &key)
{
    if (s.taken.empty() || s.result != 1)
        return false;
    const Change &last = s.scenario.changes.at(s.taken.size() - 1);
    const auto &value = last.oper == 2 ? last.old_value : last.new_value;
    return value && value->xpath && value->xpath->find(key) != std::string::npos;
}

bool sentForGroup(const Story &s, const char *group)
{
    return s.sent(24, kSet, kGroupOfBinding, group) || s.sent(31, kSet, kGroupOfBinding, group);
}

bool nothingSent(const Story &s)
{
    return s.contexts == 0 && s.result == 0 && !s.taken.empty();
}

std::uint32_t firstAnswer(const Story &s)
{
    const auto found = s.scenario.exchanges.find(1);
    return found == s.scenario.exchanges.end() || s.requests.size() != 1
               ? 0
               : found->second.reply.result;
}

} // namespace

Chapter globalChapter()
{
    return {
        "NcGlobal",
        {
            {"global: startFailType is set", [](const Story &s) { return s.count(21, kSet) > 0; }},
            {"global: startFailType is deleted",
             [](const Story &s) { return s.count(21, kUndo) > 0; }},
            {"global: accountInterval is set", [](const Story &s) { return s.count(5, kSet) > 0; }},
            {"global: accountInterval is deleted",
             [](const Story &s) { return s.count(5, kUndo) > 0; }},
            {"global: another leaf is logged and sends nothing",
             [](const Story &s) { return s.result == 0 && s.logged("is not support."); }},
            {"global: both leaves are sent, in order",
             [](const Story &s) {
                 return s.requests.size() == 2 && s.requests[0].type == 21 &&
                        s.requests[1].type == 5 && s.result == 0;
             }},
            {"global: a failed first leaf leaves the second unsent",
             [](const Story &s) { return s.result == 7 && s.contexts == 1 && s.endedEarly(); }},
        }};
}

Chapter sourceInterfaceChapter()
{
    return {"NcSrcInterface",
            {
                {"source interface: an entry is created",
                 [](const Story &s) {
                     return s.requests.size() == 1 && s.sent(19, kSet, 0, "vlan10") &&
                            s.sent(19, kSet, kVrfOfInterface, "mgmt");
                 }},
                {"source interface: an entry is deleted",
                 [](const Story &s) { return s.count(19, kUndo) > 0; }},
                {"source interface: the VRF alone sends nothing",
                 [](const Story &s) { return nothingSent(s) && only(s, "vrfName"); }},
                {"source interface: half a record is dropped at the end",
                 [](const Story &s) { return s.happened("half a source interface dropped"); }},
                {"source interface: a name of 39 characters is whole",
                 [](const Story &s) {
                     return takenText(s, "srcInterfaceName", 39, 39) && sentOfLength(s, 0, 39);
                 }},
                {"source interface: a longer name is cut to 39",
                 [](const Story &s) {
                     return takenText(s, "srcInterfaceName", 40, 99) && sentOfLength(s, 0, 39);
                 }},
                {"source interface: a longer VRF is cut to 32",
                 [](const Story &s) {
                     return takenText(s, "vrfName", 33, 99) && sentOfLength(s, kVrfOfInterface, 32);
                 }},
                {"source interface: the VRF may come first",
                 [](const Story &s) {
                     return s.requests.size() == 1 && s.taken.size() > 1 &&
                            s.taken[0].leaf == "vrfName" && s.taken[1].leaf == "srcInterfaceName";
                 }},
                {"source interface: the change that completes the pair tells set or undo",
                 [](const Story &s) {
                     return s.requests.size() == 1 && s.taken.size() == 2 && s.taken[0].oper != 2 &&
                            s.requests[0].do_flag == kUndo;
                 }},
                {"source interface: two entries send two requests",
                 [](const Story &s) { return s.requests.size() == 2 && s.result == 0; }},
                {"source interface: a shorter text leaves the old tail",
                 [](const Story &s) {
                     return !s.requests.empty() &&
                            s.happened("old tail kept behind a shorter text");
                 }},
            }};
}

Chapter serverGroupChapter()
{
    return {
        "NcServerGroupConf",
        {
            {"server group: RADIUS group created",
             [](const Story &s) { return s.sent(22, kSet, 0, "core"); }},
            {"server group: RADIUS group deleted",
             [](const Story &s) { return s.sent(22, kUndo, 0, "core"); }},
            {"server group: TACACS group created",
             [](const Story &s) { return s.sent(29, kSet, 0, "core"); }},
            {"server group: TACACS group deleted",
             [](const Story &s) { return s.sent(29, kUndo, 0, "core"); }},
            {"server group: the name radius is refused",
             [](const Story &s) { return endedUnderKey(s, "[serverGroupName='radius']"); }},
            {"server group: the name tacacs is refused",
             [](const Story &s) { return endedUnderKey(s, "[serverGroupName='tacacs']"); }},
            {"server group: a name with a blank is refused",
             [](const Story &s) { return endedUnderKey(s, "[serverGroupName='a b']"); }},
            {"server group: a blank behind the cut passes",
             [](const Story &s) {
                 return sentOfLength(s, 0, 32) && s.errors.empty() &&
                        s.debugs.find(" z']") != std::string::npos && s.result == 0;
             }},
            {"server group: names are checked at any leaf",
             [](const Story &s) { return s.happened("group name refused at serverGroupName"); }},
            {"server group: a longer name is cut to 32",
             [](const Story &s) { return sentOfLength(s, 0, 32); }},
            {"server group: another leaf sends nothing",
             [](const Story &s) { return nothingSent(s) && only(s, "serverGroupName"); }},
            {"server group: an unknown type sends an empty block",
             [](const Story &s) {
                 return !s.requests.empty() && s.requests.back().length == 0 &&
                        s.happened("empty block sent for an unknown group type");
             }},
            {"server group: an unknown type sends the block that an unsent change left",
             [](const Story &s) {
                 return s.happened("earlier block sent for an unknown group type");
             }},
            {"server group: a refused request ends the walk with 1",
             [](const Story &s) { return s.result == 1 && firstAnswer(s) > 1; }},
        }};
}

Chapter serverGroupVrfChapter()
{
    return {"NcServerGroupVrf",
            {
                {"binding: RADIUS group bound",
                 [](const Story &s) {
                     return s.sent(24, kSet, kGroupOfBinding, "core") &&
                            s.sent(24, kSet, kVrfOfRadiusBinding, "mgmt");
                 }},
                {"binding: TACACS group bound",
                 [](const Story &s) {
                     return s.sent(31, kSet, kGroupOfBinding, "core") &&
                            s.sent(31, kSet, kVrfOfTacacsBinding, "mgmt");
                 }},
                {"binding: RADIUS group back to global",
                 [](const Story &s) { return s.sent(24, kUndo, kVrfOfRadiusBinding, "global"); }},
                {"binding: TACACS group back to global",
                 [](const Story &s) { return s.sent(31, kUndo, kVrfOfTacacsBinding, "global"); }},
                {"binding: a key leaf alone sends nothing",
                 [](const Story &s) {
                     return nothingSent(s) && only(s, "serverGroupType") && s.logged("Set param");
                 }},
                {"binding: an unknown type is skipped",
                 [](const Story &s) {
                     return nothingSent(s) &&
                            s.happened("binding of an unknown group type skipped");
                 }},
                {"binding: a longer group name is cut to 32",
                 [](const Story &s) { return sentOfLength(s, kGroupOfBinding, 32); }},
                {"binding: a longer VRF is cut to 32",
                 [](const Story &s) {
                     return takenText(s, "vrfName", 33, 99) &&
                            (sentOfLength(s, kVrfOfRadiusBinding, 32) ||
                             sentOfLength(s, kVrfOfTacacsBinding, 32));
                 }},
                {"binding: the name radius passes",
                 [](const Story &s) { return sentForGroup(s, "radius"); }},
                {"binding: a name with a blank passes",
                 [](const Story &s) { return sentForGroup(s, "a b"); }},
                {"binding: a refused request ends the walk with 1",
                 [](const Story &s) { return s.result == 1 && firstAnswer(s) > 1; }},
            }};
}

Chapter domainChapter()
{
    return {
        "NcDomainConf",
        {
            {"domain: created",
             [](const Story &s) {
                 return s.sent(0, kSet, 0, "abc") && s.requests[0].word(kConfirm) == 0;
             }},
            {"domain: deleted, with the confirmation",
             [](const Story &s) {
                 return s.sent(0, kUndo, 0, "abc") && s.requests.back().word(kConfirm) == 1;
             }},
            {"domain: default is refused",
             [](const Story &s) { return endedUnderKey(s, "[domainName='default']"); }},
            {"domain: a blank is refused",
             [](const Story &s) { return endedUnderKey(s, "[domainName='a b']"); }},
            {"domain: an @ is refused",
             [](const Story &s) { return endedUnderKey(s, "[domainName='user@isp']"); }},
            {"domain: an @ in front is refused",
             [](const Story &s) { return endedUnderKey(s, "[domainName='@isp']"); }},
            {"domain: an empty name passes", [](const Story &s) { return s.sent(0, kSet, 0, ""); }},
            {"domain: a longer name is cut to 63",
             [](const Story &s) { return sentOfLength(s, 0, 63); }},
            {"domain: an @ behind the cut passes",
             [](const Story &s) {
                 return sentOfLength(s, 0, 63) && s.debugs.find("@isp']") != std::string::npos;
             }},
            {"domain: the answer 52 gives 8",
             [](const Story &s) { return s.result == 8 && firstAnswer(s) == 52; }},
            {"domain: the answer 49 gives 8",
             [](const Story &s) { return s.result == 8 && firstAnswer(s) == 49; }},
            {"domain: the answer 3 gives 1",
             [](const Story &s) { return s.result == 1 && firstAnswer(s) == 3; }},
            {"domain: another event returns 0",
             [](const Story &s) {
                 return s.scenario.event > 3 && !s.scenario.changes.empty() && s.result == 0;
             }},
        }};
}

} // namespace aaanc::test::model
