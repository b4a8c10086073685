// The server groups, their VRF bindings, and the domains: one request per
// change of one leaf, names read from the entry's keys.
#include "bytes.hpp"
#include "handler.hpp"
#include "text.hpp"

#include <set>

namespace aaanc::test::model
{
namespace
{

constexpr std::size_t kWordSize = 32;
constexpr std::size_t kDomainSize = 63;

bool holds(const std::string &text, char wanted)
{
    return text.find(wanted) != std::string::npos;
}

class ServerGroup : public Handler
{
public:
    using Handler::Handler;

    void change(Leaf &leaf) override
    {
        const auto key = [&](const char *name) {
            return cut(keyOrEnd(leaf, "serverGroup", name, name), kWordSize);
        };
        const std::string type = key("serverGroupType");
        const std::string name = key("serverGroupName");
        if (holds(name, ' ') || name == "radius" || name == "tacacs") {
            world_.note("group name refused at " + leaf.name);
            throw End{1};
        }
        static const std::map<std::string, std::uint32_t> kTypes = {{"tacacs", 29}, {"radius", 22}};
        if (const auto found = kTypes.find(type); found != kTypes.end())
            world_.set(block_, found->second, leaf.oper, Bytes(33).text(0, name).str());
        world_.debug(changeFunction(),
                     say("Server group info: groupType %s, groupName %s.", {type, name}));
        if (leaf.name == "serverGroupType")
            send(kTypes.contains(type));
    }

private:
    void send(bool type_known)
    {
        if (!type_known)
            world_.note(block_.payload.empty() ? "empty block sent for an unknown group type"
                                               : "earlier block sent for an unknown group type");
        if (const std::int32_t code = world_.send(block_)) {
            refused(code);
            throw End{1};
        }
        block_ = Block();
    }

    Block block_; // an unsent change leaves its request here
};

class ServerGroupVrf : public Handler
{
public:
    using Handler::Handler;

    void change(Leaf &leaf) override
    {
        const auto key = [&](const char *name) {
            return keyOrEnd(leaf, "serverGroup", name, name);
        };
        const std::string type = cut(key("serverGroupType"), kWordSize);
        const std::string name = key("serverGroupName");
        struct Kind {
            std::uint32_t message;
            std::size_t size;
            std::size_t vrf_offset;
        };
        static const std::map<std::string, Kind> kKinds = {{"tacacs", {31, 84, 48}},
                                                           {"radius", {24, 108, 56}}};
        const auto found = kKinds.find(type);
        if (found == kKinds.end())
            return world_.note("binding of an unknown group type skipped");
        const Kind &kind = found->second;
        const std::string stored_name = copied(name);
        const bool to_send = leaf.name == "vrfName";
        const std::string vrf = !to_send         ? ""
                                : leaf.deleted() ? copied("global")
                                                 : copied(leaf.text());
        Block block;
        world_.set(block, kind.message, leaf.oper,
                   Bytes(kind.size).text(5, stored_name).text(kind.vrf_offset, vrf).str());
        world_.debug(changeFunction(), say("Server group info: groupType %s, groupName %s,vrf %s.",
                                           {type, stored_name, vrf}));
        if (to_send)
            send(block);
    }

private:
    std::string copied(const std::string &text)
    {
        world_.boundedCopy(text, kWordSize + 1);
        return cut(text, kWordSize);
    }

    void send(const Block &block)
    {
        if (const std::int32_t code = world_.send(block)) {
            refused(code);
            throw End{1};
        }
    }
};

class Domain : public Handler
{
public:
    using Handler::Handler;

    void change(Leaf &leaf) override
    {
        const std::string name =
            cut(keyOrEnd(leaf, "domainInfo", "domainName", "domainName"), kDomainSize);
        const std::uint32_t confirm = leaf.deleted() ? 1 : 0;
        world_.debug(changeFunction(),
                     say("Domain info: doaminName %s, bSecondConfirm %d.", {name, shown(confirm)}));
        if (holds(name, ' ') || name == "default" || holds(name, '@'))
            throw End{1};
        if (leaf.name == "domainName")
            requestOrEnd(0, leaf.oper, Bytes(68).text(0, name).word(64, confirm).str(), refusal);
    }

private:
    static End refusal(std::int32_t code)
    {
        return {code == 52 || code == 49 ? 8 : 1};
    }
};

} // namespace

std::unique_ptr<Handler> makeServerGroup(World &world, const std::string &stem)
{
    return std::make_unique<ServerGroup>(world, stem);
}

std::unique_ptr<Handler> makeServerGroupVrf(World &world, const std::string &stem)
{
    return std::make_unique<ServerGroupVrf>(world, stem);
}

std::unique_ptr<Handler> makeDomain(World &world, const std::string &stem)
{
    return std::make_unique<Domain>(world, stem);
}

} // namespace aaanc::test::model
