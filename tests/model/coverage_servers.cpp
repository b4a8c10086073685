// Behaviours of the RADIUS and TACACS servers and of their shared keys.
#include "coverage.hpp"
#include "schema.hpp"

#include <algorithm>
#include <set>

namespace aaanc::test::model
{
namespace
{

constexpr std::uint32_t kRadius = 63;
constexpr std::uint32_t kTacacs = 30;
constexpr std::uint32_t kSet = 1;
constexpr std::uint32_t kUndo = 0;

// Where the two records hold what they have in common.
struct Places {
    std::uint32_t type;
    std::size_t address;
    std::size_t family;
    std::size_t plain_key;
    std::size_t key_type;
    std::size_t cipher_key;
};

constexpr Places kRadiusPlaces = {kRadius, 33, 81, 100, 228, 232};
constexpr Places kTacacsPlaces = {kTacacs, 37, 85, 92, 220, 224};
constexpr std::size_t kRadiusAccountPort = 88;
constexpr std::size_t kRadiusGiven = 92;
constexpr std::size_t kRadiusIdentity = 84; // up to the ports

bool any(const Story &s, const Places &places, bool (*shows)(const Sent &, const Places &))
{
    return std::any_of(s.requests.begin(), s.requests.end(), [&](const Sent &request) {
        return request.type == places.type && shows(request, places);
    });
}

bool decodedToTooMuch(const Story &s)
{
    return s.result == 7 && s.key_not_decoded && s.errors.empty() && !s.taken.empty() &&
           s.taken.back().text.size() == 520;
}

bool notHexadecimal(const Story &s)
{
    return s.result == 7 && s.key_not_decoded && s.errors.empty() && !s.taken.empty() &&
           s.taken.back().text == "secret";
}

template <std::size_t Length> bool plainOf(const Sent &request, const Places &places)
{
    return request.text(places.plain_key).size() == Length;
}

template <std::size_t Length> bool cipherOf(const Sent &request, const Places &places)
{
    return request.text(places.cipher_key).size() == Length;
}

bool refusedOverIpv6(const Sent &request, const Places &places)
{
    const std::string address = request.text(places.address);
    return request.byte(places.family) == 2 &&
           (address == "::1" || address == "fe80::1" || address == "ff02::1");
}

bool version4(const Story &s)
{
    return s.scenario.callback.find("Ipv4") != std::string::npos;
}

bool addressRefused(const Story &s)
{
    return s.result == 1 && !s.facts.addresses_checked.empty() &&
           !s.facts.addresses_checked.back().second;
}

bool answered(const Story &s, std::size_t request, std::uint32_t with)
{
    const auto found = s.scenario.exchanges.find(request);
    return found != s.scenario.exchanges.end() && s.requests.size() == request &&
           found->second.reply.result == with &&
           s.logged("Cmf recv decode error code=<" + std::to_string(with));
}

bool answeredOtherwise(const Story &s, std::size_t request)
{
    return answered(s, request, 3) || answered(s, request, 49) || answered(s, request, 52);
}

bool afterLastChange(const Story &s)
{
    return !s.endedEarly() && s.iterator_freed;
}

// How many leaves an entry of this callback's list has, where the changes are one of an
// entry itself and one of each leaf; else 0.
std::size_t wholeEntry(const Story &s)
{
    const auto schema =
        std::find_if(schemas().begin(), schemas().end(), [&](const Schema &candidate) {
            return candidate.callback == s.scenario.callback;
        });
    const std::string &xpath = s.scenario.xpath;
    std::set<std::string> missing = {xpath.substr(xpath.rfind('/') + 1)};
    for (const Node &node : schema->nodes)
        missing.insert(node.name());
    for (const Taken &taken : s.taken)
        missing.erase(taken.leaf.substr(0, taken.leaf.find('[')));
    const std::size_t leaves = schema->nodes.size();
    return missing.empty() && s.taken.size() == leaves + 1 ? leaves : 0;
}

bool twoEntriesOfOneServer(const Story &s)
{
    if (s.requests.size() < 2)
        return false;
    const Sent &first = s.requests[0];
    const Sent &second = s.requests[1];
    return first.payload.substr(0, kRadiusIdentity) == second.payload.substr(0, kRadiusIdentity) &&
           first.word(kRadiusIdentity) == second.word(kRadiusIdentity) &&
           first.word(kRadiusAccountPort) != second.word(kRadiusAccountPort);
}

} // namespace

Chapter radiusKeyChapter()
{
    return {"Radius",
            {
                {"RADIUS key: a plain key of 127 characters is stored",
                 [](const Story &s) { return any(s, kRadiusPlaces, plainOf<127>); }},
                {"RADIUS key: a plain key of 128 characters is refused",
                 [](const Story &s) { return s.logged("plain key length[128] is too long."); }},
                {"RADIUS key: a cipher key of 258 characters is stored",
                 [](const Story &s) { return any(s, kRadiusPlaces, cipherOf<258>); }},
                {"RADIUS key: a cipher key of 259 characters is stored",
                 [](const Story &s) { return any(s, kRadiusPlaces, cipherOf<259>); }},
                {"RADIUS key: 260 characters cannot be decoded", decodedToTooMuch},
                {"RADIUS key: text that is not hexadecimal", notHexadecimal},
                {"RADIUS key: without a type it is a cipher key",
                 [](const Story &s) {
                     return any(s, kRadiusPlaces, [](const Sent &request, const Places &places) {
                         return (request.half(kRadiusGiven) & 0x30U) == 0x20 &&
                                request.word(places.key_type) == 1 &&
                                !request.text(places.cipher_key).empty();
                     });
                 }},
                {"RADIUS key: a later type does not move it",
                 [](const Story &s) {
                     return any(s, kRadiusPlaces, [](const Sent &request, const Places &places) {
                         return request.word(places.key_type) == 0 &&
                                !request.text(places.cipher_key).empty();
                     });
                 }},
            }};
}

Chapter tacacsKeyChapter()
{
    return {"tacacs",
            {
                {"TACACS key: a plain key of 127 characters is stored",
                 [](const Story &s) { return any(s, kTacacsPlaces, plainOf<127>); }},
                {"TACACS key: a plain key of 128 characters is refused",
                 [](const Story &s) { return s.logged("plain key length[128] is too long."); }},
                {"TACACS key: a cipher key of 258 characters is stored",
                 [](const Story &s) { return any(s, kTacacsPlaces, cipherOf<258>); }},
                {"TACACS key: a cipher key of 259 characters is stored",
                 [](const Story &s) { return any(s, kTacacsPlaces, cipherOf<259>); }},
                {"TACACS key: 260 characters cannot be decoded", decodedToTooMuch},
                {"TACACS key: text that is not hexadecimal", notHexadecimal},
                {"TACACS key: before its type it is a plain key",
                 [](const Story &s) {
                     return any(s, kTacacsPlaces, [](const Sent &request, const Places &places) {
                         return request.word(places.key_type) == 1 &&
                                !request.text(places.plain_key).empty();
                     });
                 }},
            }};
}

Chapter radiusChapter()
{
    return {
        "Radius",
        {
            {"RADIUS: one IPv4 entry with all seven leaves is one request",
             [](const Story &s) {
                 return wholeEntry(s) == 7 && s.requests.size() == 1 && s.result == 0 &&
                        s.requests[0].byte(81) == 2 && s.requests[0].half(kRadiusGiven) == 0x70;
             }},
            {"RADIUS: two entries are two requests",
             [](const Story &s) {
                 return s.requests.size() == 2 && s.result == 0 &&
                        s.happened("server sent when the next entry began");
             }},
            {"RADIUS: an entry deleted before a created one is sent as set",
             [](const Story &s) {
                 return s.requests.size() == 2 && s.taken[0].oper == 2 &&
                        s.requests[0].do_flag == kSet && s.taken.back().oper == 0;
             }},
            {"RADIUS: an entry is deleted",
             [](const Story &s) { return s.count(kRadius, kUndo) > 0; }},
            {"RADIUS: the priority alone, the rest from the keys",
             [](const Story &s) {
                 return s.taken.size() == 1 && s.requests.size() == 1 &&
                        s.requests[0].half(kRadiusGiven) == 0x40 && !s.requests[0].text(0).empty();
             }},
            {"RADIUS: entries that differ in the accounting port only", twoEntriesOfOneServer},
            {"RADIUS: a longer address is cut to 47",
             [](const Story &s) {
                 return any(s, kRadiusPlaces, [](const Sent &request, const Places &places) {
                     return request.text(places.address).size() == 47;
                 });
             }},
            {"RADIUS: a refused IPv6 address ends the walk with 1", addressRefused},
            {"RADIUS: the same text passes in the IPv4 list",
             [](const Story &s) { return any(s, kRadiusPlaces, refusedOverIpv6); }},
            {"RADIUS: an address that was not given is not checked",
             [](const Story &s) {
                 return !version4(s) && !s.taken.empty() &&
                        any(s, kRadiusPlaces, [](const Sent &request, const Places &places) {
                            return request.byte(places.family) == 0;
                        });
             }},
            {"RADIUS: no change at all sends zeros",
             [](const Story &s) {
                 return s.taken.empty() && s.requests.size() == 1 &&
                        s.requests[0].payload == std::string(492, '\0');
             }},
            {"RADIUS: the answer 43 to the last IPv4 request gives 5",
             [](const Story &s) {
                 return version4(s) && s.result == 5 && answered(s, 1, 43) && afterLastChange(s);
             }},
            {"RADIUS: another answer to the last IPv4 request gives 1",
             [](const Story &s) {
                 return version4(s) && s.result == 1 && answeredOtherwise(s, 1) &&
                        afterLastChange(s);
             }},
            {"RADIUS: the answer 43 to the last IPv6 request gives 7",
             [](const Story &s) {
                 return !version4(s) && s.result == 7 && answered(s, 1, 43) && afterLastChange(s);
             }},
            {"RADIUS: the answer 43 in the middle gives 5, in the IPv6 list too",
             [](const Story &s) { return !version4(s) && s.result == 5 && answered(s, 1, 43); }},
            {"RADIUS: another answer in the middle gives 1",
             [](const Story &s) {
                 return s.result == 1 && s.endedEarly() && answeredOtherwise(s, 1);
             }},
            {"RADIUS: the missing authentication port goes by another name",
             [](const Story &s) { return s.logged("Get value for key serverGroupType in "); }},
            {"RADIUS: the IPv6 list names the IPv4 keys",
             [](const Story &s) {
                 return !version4(s) && s.logged("Get value for key radiusIpv4GroupName in ");
             }},
        }};
}

Chapter tacacsChapter()
{
    return {"tacacs",
            {
                {"TACACS: a server with all six leaves is one request",
                 [](const Story &s) {
                     return wholeEntry(s) == 6 && s.count(kTacacs, kSet) == 1 && s.result == 0;
                 }},
                {"TACACS: a server without a key sends nothing",
                 [](const Story &s) {
                     return s.result == 0 && s.contexts == 0 &&
                            s.happened("server without a key dropped");
                 }},
                {"TACACS: the priority alone sends nothing",
                 [](const Story &s) {
                     return s.result == 0 && s.contexts == 0 && s.taken.size() == 1 &&
                            s.taken[0].leaf.find("ServerPriority") != std::string::npos;
                 }},
                {"TACACS: a server is deleted",
                 [](const Story &s) { return s.count(kTacacs, kUndo) > 0; }},
                {"TACACS: two servers are two requests",
                 [](const Story &s) { return s.requests.size() == 2 && s.result == 0; }},
                {"TACACS: changes of two operations make one request",
                 [](const Story &s) {
                     return s.requests.size() == 1 && s.taken.size() < 12 && s.taken[0].oper == 2 &&
                            s.requests[0].do_flag == kSet;
                 }},
                {"TACACS: a refused IPv6 address ends the walk with 1", addressRefused},
                {"TACACS: the same text passes in the IPv4 list",
                 [](const Story &s) { return any(s, kTacacsPlaces, refusedOverIpv6); }},
                {"TACACS: any answer but 0 gives 7",
                 [](const Story &s) { return s.result == 7 && answered(s, 1, 43); }},
            }};
}

} // namespace aaanc::test::model
