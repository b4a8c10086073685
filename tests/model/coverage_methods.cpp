// Behaviours of the method lists of domains.
#include "coverage.hpp"

#include <algorithm>

namespace aaanc::test::model
{
namespace
{

constexpr std::size_t kDomain = 0;
constexpr std::size_t kKind = 64;
constexpr std::size_t kType = 68;
constexpr std::size_t kStage = 72;
constexpr std::size_t kFirstGroup = 80;
constexpr std::size_t kGroupSize = 40;

std::uint32_t groupType(const Sent &request, std::size_t group)
{
    return request.word(kFirstGroup + kGroupSize * group);
}

std::string groupName(const Sent &request, std::size_t group)
{
    return request.text(kFirstGroup + kGroupSize * group + 4);
}

bool any(const Story &s, bool (*shows)(const Sent &))
{
    return std::any_of(s.requests.begin(), s.requests.end(), shows);
}

bool took(const Story &s, const char *leaf)
{
    return std::any_of(s.taken.begin(), s.taken.end(),
                       [=](const Taken &taken) { return taken.leaf == leaf; });
}

bool took(const Story &s, const char *leaf, const char *text)
{
    return std::any_of(s.taken.begin(), s.taken.end(), [=](const Taken &taken) {
        return taken.leaf == leaf && taken.text == text;
    });
}

bool unfreed(const Story &s, std::int32_t result)
{
    return !s.taken.empty() && s.result == result && !s.iterator_freed;
}

bool dropped(const Story &s)
{
    return s.result == 0 && s.contexts == 0 && s.iterator_freed;
}

bool fourGroups(const Sent &request)
{
    return groupType(request, 3) != 0 && !groupName(request, 3).empty();
}

bool typeWithoutNameFirst(const Story &s)
{
    const auto first = std::find_if(s.taken.begin(), s.taken.end(), [](const Taken &taken) {
        return taken.leaf.rfind("groupType", 0) == 0;
    });
    return first != s.taken.end() && first->leaf == "groupType1" && first->text == "tacacs-group" &&
           any(s, [](const Sent &request) { return groupType(request, 0) == 2; });
}

} // namespace

Chapter authenticationChapter()
{
    return {
        "NcDomainAuthen",
        {
            {"authentication: a domain with one RADIUS group",
             [](const Story &s) {
                 return any(s, [](const Sent &request) {
                     return request.length == 244 && request.text(kDomain) == "d1" &&
                            request.word(kType) == 0 && groupType(request, 0) == 3 &&
                            groupName(request, 0) == "g1" && groupType(request, 1) == 0;
                 });
             }},
            {"authentication: the default protocol",
             [](const Story &s) {
                 return any(s, [](const Sent &request) { return request.word(kType) == 5; });
             }},
            {"authentication: four groups", [](const Story &s) { return any(s, fourGroups); }},
            {"authentication: half a pair ends it with 1, the iterator unfreed",
             [](const Story &s) { return unfreed(s, 1) && s.happened("half a group pair"); }},
            {"authentication: half a pair in the loop",
             [](const Story &s) {
                 return unfreed(s, 1) && s.happened("half a group pair") && s.endedEarly();
             }},
            {"authentication: without a group name nothing is sent",
             [](const Story &s) {
                 return dropped(s) && took(s, "authDomainName") && took(s, "authenProtocol") &&
                        took(s, "groupType") && !took(s, "groupName");
             }},
            {"authentication: without a protocol nothing is sent",
             [](const Story &s) {
                 return dropped(s) && took(s, "authDomainName") && !took(s, "authenProtocol") &&
                        took(s, "groupType") && took(s, "groupName");
             }},
            {"authentication: the suffix does not choose the entry", typeWithoutNameFirst},
            {"authentication: a name behind an unknown group word does not complete the entry",
             [](const Story &s) {
                 return s.happened("group type word unknown") && any(s, [](const Sent &request) {
                            return groupType(request, 0) == 0 && !groupName(request, 0).empty();
                        });
             }},
            {"authentication: the same name and type twice ends it with 7",
             [](const Story &s) {
                 return s.result == 7 && s.happened("group named twice") &&
                        s.logged("Input group exist same name for group[");
             }},
            {"authentication: the same name and type, the last of several",
             [](const Story &s) { return s.happened("group named as the last one"); }},
            {"authentication: the same name with another type passes",
             [](const Story &s) {
                 return s.happened("group name known with another type") && s.result == 0;
             }},
            {"authentication: a null group name ends it with 7",
             [](const Story &s) { return s.result == 7 && s.happened("group without a name"); }},
            {"authentication: more than four pairs",
             [](const Story &s) {
                 return s.happened("group leaf beyond the fourth pair") && any(s, fourGroups);
             }},
            {"authentication: two entries are two requests, the first from the loop",
             [](const Story &s) {
                 return s.requests.size() == 2 && s.result == 0 &&
                        s.happened("method list sent from the loop") &&
                        s.logged("cmdoverflag:true.");
             }},
            {"authentication: a refusal in the loop leaves the iterator unfreed",
             [](const Story &s) { return unfreed(s, 7) && s.contexts > 0; }},
            {"authentication: a refusal at the end frees the iterator",
             [](const Story &s) {
                 return s.result == 7 && s.iterator_freed && s.contexts > 0 && !s.endedEarly() &&
                        s.logged("Cmf recv decode error");
             }},
        }};
}

Chapter accountingChapter()
{
    return {"NcDomainAccount",
            {
                {"accounting: a domain without accounting",
                 [](const Story &s) {
                     return any(s, [](const Sent &request) {
                         return request.text(kDomain) == "d1" && request.word(kKind) == 2 &&
                                request.word(kType) == 2 && request.word(kStage) == 0 &&
                                groupType(request, 0) == 1 && groupName(request, 0).empty();
                     });
                 }},
                {"accounting: a stage without a group sends nothing",
                 [](const Story &s) {
                     return dropped(s) && took(s, "accountDomainName") &&
                            took(s, "accountProtocol") && took(s, "accountStage", "start-stop") &&
                            !took(s, "groupType") && !took(s, "groupName");
                 }},
                {"accounting: groups without a stage end it with 1, the iterator unfreed",
                 [](const Story &s) {
                     return unfreed(s, 1) && s.happened("groups without a stage") &&
                            took(s, "accountStage", "none");
                 }},
                {"accounting: stage start-stop",
                 [](const Story &s) {
                     return any(s, [](const Sent &request) { return request.word(kStage) == 1; });
                 }},
                {"accounting: stage stop-only with a RADIUS group",
                 [](const Story &s) {
                     return any(s, [](const Sent &request) {
                         return request.word(kStage) == 2 && groupType(request, 0) == 2 &&
                                groupName(request, 0) == "g1";
                     });
                 }},
                {"accounting: stage wait-start with a TACACS group",
                 [](const Story &s) {
                     return any(s, [](const Sent &request) {
                         return request.word(kStage) == 3 && groupType(request, 0) == 3;
                     });
                 }},
                {"accounting: the default protocol",
                 [](const Story &s) {
                     return any(s, [](const Sent &request) { return request.word(kType) == 6; });
                 }},
                {"accounting: half a pair ends it with 1, the iterator unfreed",
                 [](const Story &s) { return unfreed(s, 1) && s.happened("half a group pair"); }},
                {"accounting: the same name and type twice ends it with 7",
                 [](const Story &s) { return s.result == 7 && s.happened("group named twice"); }},
                {"accounting: more than four pairs",
                 [](const Story &s) {
                     return s.happened("group leaf beyond the fourth pair") && any(s, fourGroups);
                 }},
                {"accounting: two entries are two requests, the first from the loop",
                 [](const Story &s) {
                     return s.requests.size() == 2 && s.result == 0 &&
                            s.happened("method list sent from the loop");
                 }},
                {"accounting: a refusal in the loop leaves the iterator unfreed",
                 [](const Story &s) { return unfreed(s, 7) && s.contexts > 0; }},
                {"accounting: a refusal at the end frees the iterator",
                 [](const Story &s) {
                     return s.result == 7 && s.iterator_freed && s.contexts > 0 &&
                            !s.endedEarly() && s.logged("Cmf recv decode error");
                 }},
            }};
}

} // namespace aaanc::test::model
