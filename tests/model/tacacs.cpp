// The TACACS servers, over IPv4 and over IPv6.
#include "bytes.hpp"
#include "handler.hpp"
#include "server.hpp"
#include "text.hpp"

#include <set>

namespace aaanc::test::model
{
namespace
{

class Tacacs : public Handler
{
public:
    Tacacs(World &world, const std::string &stem, const Version &version)
        : Handler(world, stem), version_(version)
    {
    }

    void change(Leaf &leaf) override
    {
        fill(leaf);
        constexpr std::size_t kAllLeaves = 6;
        if (seen_.size() != kAllLeaves)
            return;
        world_.debug(
            changeFunction(),
            say("Set server info: groupName=%s, Addr=%s, Port=%d, priority=%d.",
                {server_.group, server_.address, shown(server_.port), shown(server_.priority)}));
        if (version_.checks_address)
            addressOrEnd(world_, server_.address);
        requestOrEnd(30, leaf.oper, payload(), [](std::int32_t) { return End{7}; });
        server_ = Server();
        seen_.clear();
    }

    void end() override
    {
        if (!seen_.empty())
            world_.note("incomplete server dropped");
        if (seen_.size() == 5 && !seen_.contains("ServerKey"))
            world_.note("server without a key dropped");
    }

private:
    struct Server {
        std::string group;
        std::string address;
        std::uint32_t port = 0;
        SharedKey key;
        std::uint32_t priority = 0;
    };

    void fill(const Leaf &leaf)
    {
        if (leaf.name.rfind(version_.leaf_prefix, 0) != 0)
            return;
        const std::string kind = leaf.name.substr(version_.leaf_prefix.size());
        if (kind == "GroupName")
            server_.group = cut(leaf.text(), kGroupNameSize);
        else if (kind == "ServerAddr")
            server_.address = cut(leaf.text(), kAddressSize);
        else if (kind == "ServerPort")
            server_.port = leaf.number();
        else if (kind == "ServerKeyType")
            server_.key.type = keyTypeOf(leaf.text());
        else if (kind == "ServerKey")
            fileOrEnd(world_, fillFunction("ServerInfoFill"), server_.key,
                      decodedOrEnd(world_, leaf));
        else if (kind == "ServerPriority")
            server_.priority = leaf.number();
        else
            return;
        seen_.insert(kind);
    }

    std::string payload() const
    {
        return Bytes(520)
            .text(4, server_.group)
            .text(37, server_.address)
            .byte(85, version_.family)
            .word(88, server_.port)
            .text(92, server_.key.plain)
            .word(220, server_.key.type)
            .text(224, server_.key.cipher)
            .word(484, server_.priority)
            .str();
    }

    const Version &version_;
    Server server_;
    std::set<std::string> seen_;
};

const Version kIpv4 = {"tacacsIpv4", 2, false, false};
const Version kIpv6 = {"tacacsIpv6", 10, true, false};

} // namespace

std::unique_ptr<Handler> makeTacacsIpv4(World &world, const std::string &stem)
{
    return std::make_unique<Tacacs>(world, stem, kIpv4);
}

std::unique_ptr<Handler> makeTacacsIpv6(World &world, const std::string &stem)
{
    return std::make_unique<Tacacs>(world, stem, kIpv6);
}

} // namespace aaanc::test::model
