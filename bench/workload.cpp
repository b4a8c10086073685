#include "workload.hpp"

#include "aaa_nc/domain.hpp"
#include "aaa_nc/domain_method.hpp"
#include "aaa_nc/global.hpp"
#include "aaa_nc/radius_server.hpp"
#include "aaa_nc/server_group.hpp"
#include "aaa_nc/src_interface.hpp"
#include "aaa_nc/tacacs_server.hpp"

#include <cstring>
#include <deque>

namespace aaanc::bench
{

namespace
{

char *kept(std::string text)
{
    static std::deque<std::string> texts;
    return texts.emplace_back(std::move(text)).data();
}

template <std::size_t Size> void put(char (&field)[Size], const std::string &text)
{
    std::strncpy(field, text.c_str(), Size - 1);
}

// Writes a workload, entry by entry.
class Writer
{
public:
    Writer(std::string name, const char *xpath, Floor floor)
    {
        workload_.name = std::move(name);
        workload_.xpath = xpath;
        workload_.floor = floor;
    }

    // Begins an entry. `keys` are in the order in which the callback asks for them.
    void entry(const std::vector<std::string> &keys)
    {
        ++workload_.entries;
        keys_ = {};
        for (std::size_t i = 0; i < keys.size(); ++i)
            keys_.keys[i] = kept(keys[i]);
    }

    void node(const std::string &name, sr_type_t type = SR_LIST_T)
    {
        change(name, type);
    }

    void text(const std::string &name, const std::string &value)
    {
        change(name, SR_STRING_T).data.string_val = kept(value);
    }

    void number(const std::string &name, sr_type_t type, std::uint32_t value)
    {
        auto &data = change(name, type).data;
        if (type == SR_UINT8_T)
            data.uint8_val = static_cast<std::uint8_t>(value);
        else if (type == SR_UINT16_T)
            data.uint16_val = static_cast<std::uint16_t>(value);
        else
            data.uint32_val = value;
    }

    // Where the callback looks for one leaf only.
    void looksFor(const std::string &leaf)
    {
        workload_.names = {kept(leaf)};
    }

    template <typename Record> void request(AaaNcMsgType type, const Record &record)
    {
        AaaNcParam &block = workload_.requests.emplace_back();
        block.header = {type, 1, sizeof(record)};
        std::memcpy(block.data, &record, sizeof(record));
    }

    Workload written()
    {
        return std::move(workload_);
    }

private:
    sr_val_t &change(const std::string &name, sr_type_t type)
    {
        CannedChange &change = workload_.changes.emplace_back(keys_);
        change.leaf = kept(name);
        change.value.xpath = kept(std::string(workload_.xpath) + '/' + name);
        change.value.type = type;
        if (workload_.entries == 1 && type != SR_LIST_T)
            workload_.names.push_back(change.leaf);
        return change.value;
    }

    Workload workload_;
    CannedChange keys_{};
};

Workload global()
{
    Writer writer("global", "/orvek-aaa:sysAaa/aaaGlobal", floorGlobal);
    for (const std::uint32_t n : {1U, 2U}) {
        writer.entry({});
        writer.number("startFailType", SR_UINT8_T, n);
        writer.number("accountInterval", SR_UINT32_T, 15 * n);
        writer.request(AAA_NC_MSG_START_FAIL, AaaNcStartFailInfo{static_cast<std::uint8_t>(n)});
        writer.request(AAA_NC_MSG_ACCOUNT_INTERVAL, AaaNcAccountIntervalInfo{15 * n});
    }
    return writer.written();
}

Workload srcInterface()
{
    Writer writer("source-interface", "/orvek-aaa:sysAaa/aaaSrcInterface/srcInterface",
                  floorSrcInterface);
    for (const std::string name : {"vlan10", "vlan20"}) {
        writer.entry({});
        writer.node("srcInterface[srcInterfaceName='" + name + "']");
        writer.text("srcInterfaceName", name);
        writer.text("vrfName", "mgmt");
        AaaNcSrcInterfaceInfo info{};
        put(info.srcInterfaceName, name);
        put(info.vrfName, "mgmt");
        writer.request(AAA_NC_MSG_SRC_INTERFACE, info);
    }
    return writer.written();
}

Workload serverGroup()
{
    Writer writer("server-group", "/orvek-aaa:sysAaa/aaaGroup/serverGroup", floorServerGroup);
    for (const std::string name : {"core", "edge"}) {
        writer.entry({"radius", name});
        writer.node("serverGroup[serverGroupType='radius'][serverGroupName='" + name + "']");
        writer.text("serverGroupType", "radius");
        writer.text("serverGroupName", name);
        AaaNcServerGroupInfo info{};
        put(info.groupName, name);
        writer.request(AAA_NC_MSG_RADIUS_GROUP, info);
    }
    writer.looksFor("serverGroupType");
    return writer.written();
}

Workload serverGroupVrf()
{
    Writer writer("server-group-vrf", "/orvek-aaa:sysAaa/aaaGroupVrf/serverGroup",
                  floorServerGroupVrf);
    for (const std::string name : {"core", "edge"}) {
        writer.entry({"radius", name});
        writer.node("serverGroup[serverGroupType='radius'][serverGroupName='" + name + "']");
        writer.text("serverGroupType", "radius");
        writer.text("serverGroupName", name);
        writer.text("vrfName", "mgmt");
        AaaNcRadiusGroupVrfInfo info{};
        put(info.groupName, name);
        put(info.vrfName, "mgmt");
        writer.request(AAA_NC_MSG_RADIUS_GROUP_VRF, info);
    }
    writer.looksFor("vrfName");
    return writer.written();
}

Workload domain()
{
    Writer writer("domain", "/orvek-aaa:sysAaa/aaaDomain/domainInfo", floorDomain);
    for (const std::string name : {"staff", "guests"}) {
        writer.entry({name});
        writer.node("domainInfo[domainName='" + name + "']");
        writer.text("domainName", name);
        AaaNcDomainInfo info{};
        put(info.domainName, name);
        writer.request(AAA_NC_MSG_DOMAIN, info);
    }
    return writer.written();
}

const std::vector<std::string> &addresses(std::uint8_t family)
{
    static const std::vector<std::string> kIpv4Addresses = {"192.0.2.10", "192.0.2.11"};
    static const std::vector<std::string> kIpv6Addresses = {"2001:db8::10", "2001:db8::11"};
    return family == AAA_NC_FAMILY_IPV4 ? kIpv4Addresses : kIpv6Addresses;
}

Workload radius(std::uint8_t family, const std::vector<std::string> &addresses)
{
    const std::string version = family == AAA_NC_FAMILY_IPV4 ? "ipv4" : "ipv6";
    const std::string start = family == AAA_NC_FAMILY_IPV4 ? "radiusIpv4" : "radiusIpv6";
    Writer writer("radius-" + version,
                  kept("/orvek-aaa:sysAaa/" + start + "Server/" + start + "ServerInfo"),
                  floorRadius);
    for (const std::string &addr : addresses) {
        writer.entry({"1812", "1813", addr, "core"});
        writer.node(start + "ServerInfo[" + start + "GroupName='core'][" + start + "ServerAddr='" +
                    addr + "'][" + start + "ServerAuthenPort='1812'][" + start +
                    "ServerAccountPort='1813']");
        writer.text(start + "GroupName", "core");
        writer.text(start + "ServerAddr", addr);
        writer.number(start + "ServerAuthenPort", SR_UINT16_T, 1812);
        writer.number(start + "ServerAccountPort", SR_UINT16_T, 1813);
        writer.text(start + "ServerKeyType", "0");
        writer.text(start + "ServerKey", "as decoded by the platform");
        writer.number(start + "ServerPriority", SR_UINT8_T, 7);
        AaaNcRadiusServerInfo info{};
        put(info.entry.name.groupName, "core");
        put(info.entry.name.Addr, addr);
        info.entry.name.family = family;
        info.entry.authPort = 1812;
        info.entry.acctPort = 1813;
        info.setFlag = AAA_NC_SET_KEY_TYPE | AAA_NC_SET_KEY | AAA_NC_SET_PRIORITY;
        info.priority = 7;
        put(info.key.plainKey, kDecodedKey);
        writer.request(AAA_NC_MSG_RADIUS_SERVER, info);
    }
    return writer.written();
}

Workload tacacs(std::uint8_t family)
{
    const std::string version = family == AAA_NC_FAMILY_IPV4 ? "ipv4" : "ipv6";
    const std::string start = family == AAA_NC_FAMILY_IPV4 ? "tacacsIpv4" : "tacacsIpv6";
    Writer writer("tacacs-" + version,
                  kept("/orvek-aaa:sysAaa/" + start + "Server/" + start + "ServerInfo"),
                  floorTacacs);
    for (const std::string &addr : addresses(family)) {
        writer.entry({});
        writer.node(start + "ServerInfo[" + start + "GroupName='core'][" + start + "ServerAddr='" +
                    addr + "'][" + start + "ServerPort='49']");
        writer.text(start + "GroupName", "core");
        writer.text(start + "ServerAddr", addr);
        writer.number(start + "ServerPort", SR_UINT16_T, 49);
        writer.text(start + "ServerKeyType", "0");
        writer.text(start + "ServerKey", "as decoded by the platform");
        writer.number(start + "ServerPriority", SR_UINT8_T, 7);
        AaaNcTacacsServerInfo info{};
        put(info.name.groupName, "core");
        put(info.name.Addr, addr);
        info.name.family = family;
        info.Port = 49;
        put(info.key.plainKey, kDecodedKey);
        info.priority = 7;
        writer.request(AAA_NC_MSG_TACACS_SERVER, info);
    }
    return writer.written();
}

Workload domainAuthen()
{
    Writer writer("domain-authen", "/orvek-aaa:sysAaa/aaaDomainAuthenInfo/authenInfo",
                  floorDomainAuthen);
    for (const std::string name : {"staff", "guests"}) {
        writer.entry({});
        writer.node("authenInfo[authDomainName='" + name + "']");
        writer.text("authDomainName", name);
        writer.text("authenProtocol", "dot1x");
        writer.node("authenServerGroup", SR_CONTAINER_T);
        writer.text("groupType", "radius-group");
        writer.text("groupName", "core");
        writer.node("GroupNum1", SR_CONTAINER_T);
        writer.text("groupType1", "tacacs-group");
        writer.text("groupName1", "edge");
        AaaNcDomainMethodInfo info{};
        put(info.domainName, name);
        info.groups[0].groupType = 3;
        put(info.groups[0].groupName, "core");
        info.groups[1].groupType = 2;
        put(info.groups[1].groupName, "edge");
        writer.request(AAA_NC_MSG_DOMAIN_METHOD, info);
    }
    return writer.written();
}

Workload domainAccount()
{
    Writer writer("domain-account", "/orvek-aaa:sysAaa/aaaDomainAccountInfo/accountInfo",
                  floorDomainAccount);
    for (const std::string name : {"staff", "guests"}) {
        writer.entry({});
        writer.node("accountInfo[accountDomainName='" + name + "']");
        writer.text("accountDomainName", name);
        writer.text("accountProtocol", "dot1x");
        writer.text("accountStage", "start-stop");
        writer.node("accountServerGroup", SR_CONTAINER_T);
        writer.text("groupType", "radius-group");
        writer.text("groupName", "core");
        writer.node("GroupNum1", SR_CONTAINER_T);
        writer.text("groupType1", "tacacs-group");
        writer.text("groupName1", "edge");
        AaaNcDomainMethodInfo info{};
        put(info.domainName, name);
        info.methodKind = 2;
        info.type = 2;
        info.accountStage = 1;
        info.groups[0].groupType = 2;
        put(info.groups[0].groupName, "core");
        info.groups[1].groupType = 3;
        put(info.groups[1].groupName, "edge");
        writer.request(AAA_NC_MSG_DOMAIN_METHOD, info);
    }
    return writer.written();
}

} // namespace

void play(const Workload &workload, std::size_t entries)
{
    const std::size_t period = workload.changes.size();
    playCanned(workload.changes.data(), period, entries * period / workload.entries);
}

int runFloor(const Workload &workload, const LeafNames *names)
{
    return workload.floor(workload.xpath, workload.requests, names);
}

int runPlugin(const Workload &workload)
{
    return subscribedCallback(workload.xpath)(nullptr, workload.xpath, SR_EV_APPLY, nullptr);
}

Workload radiusServers(std::size_t count)
{
    std::vector<std::string> servers;
    for (std::size_t i = 0; i < count; ++i)
        servers.push_back("10." + std::to_string(i >> 16U) + '.' + std::to_string(i >> 8U & 255U) +
                          '.' + std::to_string(i & 255U));
    return radius(AAA_NC_FAMILY_IPV4, servers);
}

const std::vector<Workload> &workloads()
{
    static const std::vector<Workload> all = {
        global(),
        srcInterface(),
        serverGroup(),
        serverGroupVrf(),
        domain(),
        radius(AAA_NC_FAMILY_IPV4, addresses(AAA_NC_FAMILY_IPV4)),
        radius(AAA_NC_FAMILY_IPV6, addresses(AAA_NC_FAMILY_IPV6)),
        tacacs(AAA_NC_FAMILY_IPV4),
        tacacs(AAA_NC_FAMILY_IPV6),
        domainAuthen(),
        domainAccount(),
    };
    return all;
}

} // namespace aaanc::bench
