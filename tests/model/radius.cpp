// The RADIUS servers, over IPv4 and over IPv6.
#include "bytes.hpp"
#include "handler.hpp"
#include "server.hpp"
#include "text.hpp"

#include <cstdlib>
#include <tuple>

namespace aaanc::test::model
{
namespace
{

class Radius : public Handler
{
public:
    Radius(World &world, const std::string &stem, const Version &version)
        : Handler(world, stem), version_(version)
    {
    }

    void change(Leaf &leaf) override
    {
        last_oper_ = leaf.oper;
        const Entry current = entryOf(leaf);
        if (gathered_.inUse() && !gathered_.sameAs(current)) {
            flush(leaf.oper, [](std::int32_t code) { return End{code == 43 ? 5 : 1}; });
            world_.note("server sent when the next entry began");
            server_ = Server();
            gathered_ = Entry();
        }
        if (!gathered_.inUse())
            gathered_ = current;
        fill(leaf);
    }

    void end() override
    {
        flush(last_oper_, [this](std::int32_t code) {
            return End{!version_.maps_final_refusal ? 7 : code == 43 ? 5 : 1};
        });
    }

private:
    struct Entry {
        std::string group;
        std::string address;
        std::uint8_t family = 0;
        std::uint32_t authentication_port = 0;
        std::uint32_t accounting_port = 0;

        bool inUse() const
        {
            return !group.empty();
        }
        bool sameAs(const Entry &other) const
        {
            const auto identity = [](const Entry &e) {
                return std::tie(e.group, e.address, e.authentication_port, e.accounting_port);
            };
            return identity(*this) == identity(other);
        }
    };

    struct Server {
        Entry entry;
        std::uint16_t given = 0; // 0x10 key type, 0x20 key, 0x40 priority
        std::uint32_t priority = 0;
        SharedKey key;
    };

    static std::uint32_t portOf(const std::string &text)
    {
        return static_cast<std::uint32_t>(std::strtol(text.c_str(), nullptr, 10));
    }

    std::string copied(const std::string &text, std::size_t size)
    {
        world_.boundedCopy(text, size + 1);
        return cut(text, size);
    }

    // The error lines name the keys of the IPv4 list, and the first one wrongly.
    Entry entryOf(Leaf &leaf)
    {
        const std::string &prefix = version_.leaf_prefix;
        const auto key = [&](const char *ending, const char *printed) {
            return keyOrEnd(leaf, prefix + "ServerInfo", prefix + ending, printed);
        };
        Entry entry;
        entry.authentication_port = portOf(key("ServerAuthenPort", "serverGroupType"));
        entry.accounting_port = portOf(key("ServerAccountPort", "radiusIpv4ServerAccountPort"));
        entry.address = copied(key("ServerAddr", "radiusIpv4ServerAddr"), kAddressSize);
        entry.family = version_.family;
        entry.group = copied(key("GroupName", "radiusIpv4GroupName"), kGroupNameSize);
        return entry;
    }

    void fill(const Leaf &leaf)
    {
        const std::string &prefix = version_.leaf_prefix;
        const auto is = [&](const char *ending) { return leaf.name == prefix + ending; };
        if (is("GroupName")) {
            server_.entry.group = cut(leaf.text(), kGroupNameSize);
        } else if (is("ServerAddr")) {
            server_.entry.address = cut(leaf.text(), kAddressSize);
            server_.entry.family = version_.family;
        } else if (is("ServerAuthenPort")) {
            server_.entry.authentication_port = leaf.number();
        } else if (is("ServerAccountPort")) {
            server_.entry.accounting_port = leaf.number();
        } else if (is("ServerKeyType")) {
            server_.key.type = keyTypeOf(leaf.text());
            server_.given |= 0x10;
        } else if (is("ServerKey")) {
            fileKey(leaf);
        } else if (is("ServerPriority")) {
            server_.priority = leaf.number();
            server_.given |= 0x40;
        }
    }

    // A key whose type was not given is a cipher key.
    void fileKey(const Leaf &leaf)
    {
        const std::string decoded = decodedOrEnd(world_, leaf);
        if ((server_.given & 0x10) == 0)
            server_.key.type = 1;
        fileOrEnd(world_, fillFunction("ServerInfoFill"), server_.key, decoded);
        server_.given |= 0x20;
    }

    void flush(std::uint32_t oper, const std::function<End(std::int32_t)> &refusal)
    {
        if (server_.entry.group.empty())
            server_.entry = gathered_;
        const Entry &entry = server_.entry;
        world_.debug(changeFunction(),
                     say("Set server info: groupName=%s, Addr=%s, authPort=%d, acctPort=%d, "
                         "setFlag=%d,priority=%d.",
                         {entry.group, entry.address, shown(entry.authentication_port),
                          shown(entry.accounting_port), shown(std::uint32_t{server_.given}),
                          shown(server_.priority)}));
        if (version_.checks_address && entry.family == version_.family)
            addressOrEnd(world_, entry.address);
        requestOrEnd(63, oper, payload(), refusal);
    }

    std::string payload() const
    {
        const Entry &entry = server_.entry;
        return Bytes(492)
            .text(0, entry.group)
            .text(33, entry.address)
            .byte(81, entry.family)
            .word(84, entry.authentication_port)
            .word(88, entry.accounting_port)
            .half(92, server_.given)
            .word(96, server_.priority)
            .text(100, server_.key.plain)
            .word(228, server_.key.type)
            .text(232, server_.key.cipher)
            .str();
    }

    const Version &version_;
    Server server_;
    Entry gathered_;
    std::uint32_t last_oper_ = 0;
};

const Version kIpv4 = {"radiusIpv4", 2, false, true};
const Version kIpv6 = {"radiusIpv6", 10, true, false};

} // namespace

std::unique_ptr<Handler> makeRadiusIpv4(World &world, const std::string &stem)
{
    return std::make_unique<Radius>(world, stem, kIpv4);
}

std::unique_ptr<Handler> makeRadiusIpv6(World &world, const std::string &stem)
{
    return std::make_unique<Radius>(world, stem, kIpv6);
}

} // namespace aaanc::test::model
