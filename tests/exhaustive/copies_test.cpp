// Every text field of every request, filled with texts of every length around
// its bound: what fits is there, what does not is cut off, the rest of the field
// is zero, and no other byte depends on it.
#include "harness/fake_platform.hpp"
#include "harness/payload.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <string>
#include <vector>

namespace aaanc::test
{

namespace
{

using Changes = std::vector<Change>;

Change created(const std::string &xpath, const std::string &text)
{
    return {0, std::nullopt, Value{xpath, 18, text}};
}

Change created(const std::string &xpath, std::uint32_t type, std::uint32_t number)
{
    return {0, std::nullopt, Value{xpath, type, number}};
}

const std::string kRoot = "/orvek-aaa:sysAaa";

// The entry of a server group, in the list of groups or of their VRFs.
std::string groupXpath(const char *container, const char *type, const std::string &name)
{
    return kRoot + '/' + container + "/serverGroup[serverGroupType='" + type +
           "'][serverGroupName='" + name + "']";
}

Changes serverGroup(const char *type, const std::string &name)
{
    return {created(groupXpath("aaaGroup", type, name) + "/serverGroupType", type)};
}

Changes groupVrf(const char *type, const std::string &name, const std::string &vrf)
{
    return {created(groupXpath("aaaGroupVrf", type, name) + "/vrfName", vrf)};
}

Changes sourceInterface(const std::string &name, const std::string &vrf)
{
    const std::string entry = kRoot + "/aaaSrcInterface/srcInterface";
    return {created(entry + "/srcInterfaceName", name), created(entry + "/vrfName", vrf)};
}

Changes domain(const std::string &name)
{
    return {created(kRoot + "/aaaDomain/domainInfo[domainName='" + name + "']/domainName", name)};
}

// The start of a server's leaf names, "radiusIpv4" for one.
struct ServerList {
    std::string prefix;

    std::string xpath(const std::string &keys) const
    {
        return kRoot + '/' + prefix + "Server/" + prefix + "ServerInfo" + keys + '/' + prefix;
    }
};

const ServerList kRadiusIpv4 = {"radiusIpv4"};
const ServerList kRadiusIpv6 = {"radiusIpv6"};
const ServerList kTacacsIpv4 = {"tacacsIpv4"};
const ServerList kTacacsIpv6 = {"tacacsIpv6"};
const std::string kAddress = "2001:db8::1"; // that both families take

std::string radiusKeys(const ServerList &list, const std::string &group, const std::string &address)
{
    const std::string &prefix = list.prefix;
    return '[' + prefix + "GroupName='" + group + "'][" + prefix + "ServerAddr='" + address +
           "'][" + prefix + "ServerAuthenPort='1812'][" + prefix + "ServerAccountPort='1813']";
}

// A change that is not of a key: the record gets its keys from the xpath.
Changes radiusByXpath(const ServerList &list, const std::string &group, const std::string &address)
{
    return {created(list.xpath(radiusKeys(list, group, address)) + "ServerPriority", 19, 7)};
}

Changes radiusByLeaf(const ServerList &list, const std::string &group, const std::string &address)
{
    const std::string leaf = list.xpath(radiusKeys(list, "g", kAddress));
    return {created(leaf + "GroupName", group), created(leaf + "ServerAddr", address)};
}

Changes tacacs(const ServerList &list, const std::string &group, const std::string &address)
{
    const std::string leaf = list.xpath("");
    return {created(leaf + "GroupName", group),    created(leaf + "ServerAddr", address),
            created(leaf + "ServerPort", 20, 49),  created(leaf + "ServerKeyType", "0"),
            created(leaf + "ServerKey", "6b6579"), created(leaf + "ServerPriority", 19, 7)};
}

Changes authentication(const std::string &name, const std::string &group)
{
    const std::string entry = kRoot + "/aaaDomainAuthenInfo/authenInfo";
    return {created(entry + "/authDomainName", name), created(entry + "/authenProtocol", "dot1x"),
            created(entry + "/groupType", "radius-group"), created(entry + "/groupName", group)};
}

Changes accounting(const std::string &name, const std::string &group)
{
    const std::string entry = kRoot + "/aaaDomainAccountInfo/accountInfo";
    return {created(entry + "/accountDomainName", name),
            created(entry + "/accountProtocol", "dot1x"),
            created(entry + "/accountStage", "start-stop"),
            created(entry + "/groupType", "radius-group"), created(entry + "/groupName", group)};
}

struct TextField {
    const char *name; // of the test
    const char *callback;
    std::uint32_t message_type;
    std::size_t offset;
    std::size_t size;
    std::size_t characters; // that fit
    std::function<Changes(const std::string &text)> changes;
    std::size_t shortest = 0; // text that means itself
};

const std::vector<TextField> &textFields()
{
    static const std::vector<TextField> fields = {
        {"SourceInterfaceName", "aaaNcSrcInterfaceConfChanges", 19, 0, 40, 39,
         [](const std::string &text) { return sourceInterface(text, "v"); }},
        {"SourceInterfaceVrf", "aaaNcSrcInterfaceConfChanges", 19, 40, 33, 32,
         [](const std::string &text) { return sourceInterface("i", text); }},
        {"RadiusGroup", "aaaNcServerGroupConfChanges", 22, 0, 33, 32,
         [](const std::string &text) { return serverGroup("radius", text); }},
        {"TacacsGroup", "aaaNcServerGroupConfChanges", 29, 0, 33, 32,
         [](const std::string &text) { return serverGroup("tacacs", text); }},
        {"RadiusGroupVrfGroup", "aaaNcServerGroupVrfConfChanges", 24, 5, 33, 32,
         [](const std::string &text) { return groupVrf("radius", text, "v"); }},
        {"RadiusGroupVrfVrf", "aaaNcServerGroupVrfConfChanges", 24, 56, 33, 32,
         [](const std::string &text) { return groupVrf("radius", "g", text); }},
        {"TacacsGroupVrfGroup", "aaaNcServerGroupVrfConfChanges", 31, 5, 33, 32,
         [](const std::string &text) { return groupVrf("tacacs", text, "v"); }},
        {"TacacsGroupVrfVrf", "aaaNcServerGroupVrfConfChanges", 31, 48, 33, 32,
         [](const std::string &text) { return groupVrf("tacacs", "g", text); }},
        {"DomainName", "aaaNcDomainConfChanges", 0, 0, 64, 63, domain},
        {"RadiusIpv4GroupByXpath", "aaaNcRadiusIpv4ConfChanges", 63, 0, 33, 32,
         [](const std::string &text) { return radiusByXpath(kRadiusIpv4, text, kAddress); }},
        {"RadiusIpv4AddressByXpath", "aaaNcRadiusIpv4ConfChanges", 63, 33, 48, 47,
         [](const std::string &text) { return radiusByXpath(kRadiusIpv4, "g", text); }},
        {"RadiusIpv6GroupByXpath", "aaaNcRadiusIpv6ConfChanges", 63, 0, 33, 32,
         [](const std::string &text) { return radiusByXpath(kRadiusIpv6, text, kAddress); }},
        // An empty name is replaced by that of the xpath.
        {"RadiusIpv4GroupByLeaf", "aaaNcRadiusIpv4ConfChanges", 63, 0, 33, 32,
         [](const std::string &text) { return radiusByLeaf(kRadiusIpv4, text, kAddress); }, 1},
        {"RadiusIpv4AddressByLeaf", "aaaNcRadiusIpv4ConfChanges", 63, 33, 48, 47,
         [](const std::string &text) { return radiusByLeaf(kRadiusIpv4, "g", text); }},
        {"RadiusIpv6GroupByLeaf", "aaaNcRadiusIpv6ConfChanges", 63, 0, 33, 32,
         [](const std::string &text) { return radiusByLeaf(kRadiusIpv6, text, kAddress); }, 1},
        {"TacacsIpv4Group", "aaaNctacacsIpv4ConfChanges", 30, 4, 33, 32,
         [](const std::string &text) { return tacacs(kTacacsIpv4, text, kAddress); }},
        {"TacacsIpv4Address", "aaaNctacacsIpv4ConfChanges", 30, 37, 48, 47,
         [](const std::string &text) { return tacacs(kTacacsIpv4, "g", text); }},
        {"TacacsIpv6Group", "aaaNctacacsIpv6ConfChanges", 30, 4, 33, 32,
         [](const std::string &text) { return tacacs(kTacacsIpv6, text, kAddress); }},
        {"AuthenticationDomain", "aaaNcDomainAuthenConfChanges", 1, 0, 64, 63,
         [](const std::string &text) { return authentication(text, "g"); }},
        {"AuthenticationGroup", "aaaNcDomainAuthenConfChanges", 1, 84, 36, 32,
         [](const std::string &text) { return authentication("d", text); }},
        {"AccountingDomain", "aaaNcDomainAccountConfChanges", 1, 0, 64, 63,
         [](const std::string &text) { return accounting(text, "g"); }},
        {"AccountingGroup", "aaaNcDomainAccountConfChanges", 1, 84, 36, 32,
         [](const std::string &text) { return accounting("d", text); }},
    };
    return fields;
}

// A text whose every cut shows.
std::string textOf(std::size_t length)
{
    static const std::string kLetters = "abcdefghijklmnopqrstuvwxyz0123456789-";
    std::string text(length, '\0');
    for (std::size_t at = 0; at < length; ++at)
        text[at] = kLetters[at % kLetters.size()];
    return text;
}

std::vector<std::size_t> lengthsAround(std::size_t bound)
{
    std::vector<std::size_t> lengths(2 * bound + 2);
    std::iota(lengths.begin(), lengths.end(), std::size_t{0});
    for (const std::size_t size : {256U, 1012U, 1024U, 4096U}) {
        for (std::size_t length = size - 2; length <= size + 2; ++length)
            lengths.push_back(length);
    }
    return lengths;
}

std::string unhexed(const std::string &digits)
{
    std::string bytes;
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
    return bytes;
}

struct Outcome {
    std::string result;              // line of the trace
    std::vector<std::string> blocks; // header and payload of each request
};

Outcome commit(const char *callback, const Changes &changes)
{
    Scenario scenario;
    scenario.callback = callback;
    scenario.log_level = 0;
    scenario.changes = changes;
    const Trace trace = play(scenario);
    Outcome outcome = {trace.back(), {}};
    for (const std::string &line : trace) {
        if (line.rfind("WRONG", 0) == 0)
            ADD_FAILURE() << line;
        if (line.rfind("cmf-encode 0 ", 0) != 0)
            continue;
        const std::size_t digits = line.find(' ', std::string("cmf-encode 0 ").size()) + 1;
        outcome.blocks.push_back(unhexed(line.substr(digits, line.find(' ', digits) - digits)));
    }
    return outcome;
}

// The only request of the field's changes.
std::string payloadWith(const TextField &field, const std::string &text)
{
    const Outcome outcome = commit(field.callback, field.changes(text));
    EXPECT_EQ(outcome.result, "result 0");
    if (outcome.blocks.size() != 1) {
        ADD_FAILURE() << outcome.blocks.size() << " requests";
        return {};
    }
    EXPECT_EQ(readHeader(outcome.blocks[0]).message_type, field.message_type);
    return outcome.blocks[0].substr(kHeaderSize);
}

} // namespace

class BoundedCopy : public testing::TestWithParam<TextField>
{
};

TEST_P(BoundedCopy, EveryLength)
{
    const TextField &field = GetParam();
    const std::string with_short_text = payloadWith(field, "s");
    ASSERT_EQ(with_short_text.size(), payloadRecord(field.message_type)->size);
    const std::vector<std::size_t> lengths = lengthsAround(field.characters);
    RecordProperty("inputs", static_cast<int>(lengths.size() - field.shortest));
    for (const std::size_t length : lengths) {
        if (length < field.shortest)
            continue;
        const std::string text = textOf(length);
        std::string expected = with_short_text;
        expected.replace(field.offset, field.size, std::string(field.size, '\0'));
        const std::string fitting = text.substr(0, field.characters);
        expected.replace(field.offset, fitting.size(), fitting);
        ASSERT_EQ(payloadWith(field, text), expected) << "a text of " << length << " characters";
    }
}

INSTANTIATE_TEST_SUITE_P(EveryField, BoundedCopy, testing::ValuesIn(textFields()),
                         [](const testing::TestParamInfo<TextField> &field) {
                             return std::string(field.param.name);
                         });

namespace
{

struct KeyFields {
    const char *name; // of the test
    const char *callback;
    ServerList list;
    std::size_t plain; // offsets in the payload
    std::size_t cipher;
};

constexpr std::size_t kPlainSize = 128;
constexpr std::size_t kCipherSize = 260;
constexpr std::size_t kDecodedSize = 259; // more is not decoded

std::string hexed(const std::string &bytes)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string digits;
    for (const char byte : bytes) {
        digits += kDigits[static_cast<unsigned char>(byte) >> 4];
        digits += kDigits[static_cast<unsigned char>(byte) & 0xf];
    }
    return digits;
}

// A server whose key is of that type.
Changes serverWithKey(const ServerList &list, const char *type, const std::string &key)
{
    const bool is_radius = list.prefix.rfind("radius", 0) == 0;
    const std::string leaf = list.xpath(is_radius ? radiusKeys(list, "g", kAddress) : "");
    Changes changes = {created(leaf + "ServerKeyType", type),
                       created(leaf + "ServerKey", hexed(key)), created(leaf + "GroupName", "g"),
                       created(leaf + "ServerAddr", kAddress)};
    if (!is_radius) {
        changes.push_back(created(leaf + "ServerPort", 20, 49));
        changes.push_back(created(leaf + "ServerPriority", 19, 7));
    }
    return changes;
}

} // namespace

class ServerKeyCopy : public testing::TestWithParam<KeyFields>
{
protected:
    // Plays keys of every length, of which those of up to `longest` characters
    // are taken, into the field at `filled`.
    void playEveryLength(const char *type, std::size_t filled, std::size_t longest) const
    {
        const KeyFields &fields = GetParam();
        RecordProperty("inputs", static_cast<int>(kDecodedSize + 6));
        for (std::size_t length = 0; length <= kDecodedSize + 5; ++length) {
            const std::string key = textOf(length);
            const Outcome outcome = commit(fields.callback, serverWithKey(fields.list, type, key));
            if (length > longest) {
                ASSERT_EQ(outcome.result, "result 7") << length;
                ASSERT_TRUE(outcome.blocks.empty()) << length;
                continue;
            }
            ASSERT_EQ(outcome.result, "result 0") << length;
            ASSERT_EQ(outcome.blocks.size(), 1U) << length;
            const std::string payload = outcome.blocks[0].substr(kHeaderSize);
            ASSERT_EQ(payload.substr(fields.plain, kPlainSize),
                      padded(filled == fields.plain ? key : "", kPlainSize))
                << length;
            ASSERT_EQ(payload.substr(fields.cipher, kCipherSize),
                      padded(filled == fields.cipher ? key : "", kCipherSize))
                << length;
        }
    }

private:
    static std::string padded(std::string text, std::size_t size)
    {
        text.resize(size, '\0');
        return text;
    }
};

TEST_P(ServerKeyCopy, EveryLengthOfAPlainKey)
{
    playEveryLength("0", GetParam().plain, kPlainSize - 1);
}

TEST_P(ServerKeyCopy, EveryLengthOfACipherKey)
{
    playEveryLength("1", GetParam().cipher, kDecodedSize);
}

INSTANTIATE_TEST_SUITE_P(
    EveryList, ServerKeyCopy,
    testing::Values(KeyFields{"RadiusIpv4", "aaaNcRadiusIpv4ConfChanges", kRadiusIpv4, 100, 232},
                    KeyFields{"RadiusIpv6", "aaaNcRadiusIpv6ConfChanges", kRadiusIpv6, 100, 232},
                    KeyFields{"TacacsIpv4", "aaaNctacacsIpv4ConfChanges", kTacacsIpv4, 92, 224},
                    KeyFields{"TacacsIpv6", "aaaNctacacsIpv6ConfChanges", kTacacsIpv6, 92, 224}),
    [](const testing::TestParamInfo<KeyFields> &list) { return std::string(list.param.name); });

} // namespace aaanc::test
