#include "schema.hpp"

#include "../harness/fake_platform.hpp"

#include <stdexcept>

namespace aaanc::test::model
{
namespace
{

std::string subscribedXpath(const std::string &callback)
{
    for (const Subscription &row : kSubscriptions) {
        if (callback == row.callback)
            return row.xpath;
    }
    throw std::invalid_argument("no such callback: " + callback);
}

Schema list(const std::string &callback, const std::vector<Node> &nodes)
{
    return {callback, subscribedXpath(callback), true, nodes};
}

Schema radius(const std::string &callback, const std::string &prefix, Content address)
{
    return list(callback, {{prefix + "GroupName", Content::GroupName, true},
                           {prefix + "ServerAddr", address, true},
                           {prefix + "ServerAuthenPort", Content::Port, true},
                           {prefix + "ServerAccountPort", Content::Port, true},
                           {prefix + "ServerKeyType", Content::KeyType},
                           {prefix + "ServerKey", Content::Key},
                           {prefix + "ServerPriority", Content::Priority}});
}

Schema tacacs(const std::string &callback, const std::string &prefix, Content address)
{
    return list(callback, {{prefix + "GroupName", Content::GroupName, true},
                           {prefix + "ServerAddr", address, true},
                           {prefix + "ServerPort", Content::Port, true},
                           {prefix + "ServerKeyType", Content::KeyType},
                           {prefix + "ServerKey", Content::Key},
                           {prefix + "ServerPriority", Content::Priority}});
}

void addPairs(std::vector<Node> &nodes, const std::string &servers)
{
    nodes.push_back({servers, Content::Container, false, 0});
    for (int pair = 0; pair < 4; ++pair) {
        const std::string number = pair == 0 ? "" : std::to_string(pair);
        const std::string inner = pair == 0 ? servers : servers + "/GroupNum" + number;
        if (pair != 0)
            nodes.push_back({inner, Content::Container, false, pair});
        nodes.push_back({inner + "/groupType" + number, Content::GroupWord, false, pair});
        nodes.push_back({inner + "/groupName" + number, Content::MethodGroupName, false, pair});
    }
}

Schema authentication()
{
    std::vector<Node> nodes = {{"authDomainName", Content::DomainName, true},
                               {"authenProtocol", Content::Protocol, true}};
    addPairs(nodes, "authenServerGroup");
    return list("aaaNcDomainAuthenConfChanges", nodes);
}

Schema accounting()
{
    std::vector<Node> nodes = {{"accountDomainName", Content::DomainName, true},
                               {"accountProtocol", Content::Protocol, true},
                               {"accountStage", Content::Stage}};
    addPairs(nodes, "accountServerGroup");
    return list("aaaNcDomainAccountConfChanges", nodes);
}

std::vector<Schema> makeSchemas()
{
    const std::string global = "aaaNcGlobalConfChanges";
    const std::vector<Node> group = {{"serverGroupType", Content::ServerType, true},
                                     {"serverGroupName", Content::GroupName, true}};
    std::vector<Node> binding = group;
    binding.push_back({"vrfName", Content::VrfName});
    return {
        {global,
         subscribedXpath(global),
         false,
         {{"startFailType", Content::StartFail}, {"accountInterval", Content::Interval}}},
        list("aaaNcSrcInterfaceConfChanges",
             {{"srcInterfaceName", Content::InterfaceName, true}, {"vrfName", Content::VrfName}}),
        list("aaaNcServerGroupConfChanges", group),
        list("aaaNcServerGroupVrfConfChanges", binding),
        list("aaaNcDomainConfChanges", {{"domainName", Content::DomainName, true}}),
        radius("aaaNcRadiusIpv4ConfChanges", "radiusIpv4", Content::Ipv4Address),
        radius("aaaNcRadiusIpv6ConfChanges", "radiusIpv6", Content::Ipv6Address),
        tacacs("aaaNctacacsIpv4ConfChanges", "tacacsIpv4", Content::Ipv4Address),
        tacacs("aaaNctacacsIpv6ConfChanges", "tacacsIpv6", Content::Ipv6Address),
        authentication(),
        accounting(),
    };
}

} // namespace

bool Schema::hasPairs() const
{
    return nodes.back().pair >= 0;
}

const std::vector<Schema> &schemas()
{
    static const std::vector<Schema> kSchemas = makeSchemas();
    return kSchemas;
}

} // namespace aaanc::test::model
