// The method lists of a domain: 802.1X authentication and accounting.
#include "bytes.hpp"
#include "handler.hpp"
#include "method_groups.hpp"
#include "text.hpp"

#include <array>
#include <set>

namespace aaanc::test::model
{
namespace
{

using Words = std::map<std::string, std::uint32_t>;

// How the two handlers read their leaves. The group words have each other's codes.
struct Dialect {
    std::string domain_leaf;
    std::string protocol_leaf;
    std::string stage_leaf; // empty: there is none
    std::string servers_node;
    Words protocols;
    Words group_types;
    std::uint32_t kind_with_protocol;
    std::set<std::string> complete; // the kinds of leaf that make a record complete
};

const Dialect kAuthentication = {
    .domain_leaf = "authDomainName",
    .protocol_leaf = "authenProtocol",
    .stage_leaf = "",
    .servers_node = "authenServerGroup",
    .protocols = {{"dot1x", 0}, {"default", 5}},
    .group_types = {{"radius-group", 3}, {"tacacs-group", 2}},
    .kind_with_protocol = 0,
    .complete = {"domain", "protocol", "group type", "group name"},
};

const Dialect kAccounting = {
    .domain_leaf = "accountDomainName",
    .protocol_leaf = "accountProtocol",
    .stage_leaf = "accountStage",
    .servers_node = "accountServerGroup",
    .protocols = {{"dot1x", 2}, {"default", 6}},
    .group_types = {{"radius-group", 2}, {"tacacs-group", 3}},
    .kind_with_protocol = 2,
    .complete = {"domain", "protocol", "stage", "group type", "group name"},
};

const Words kStages = {{"none", 0}, {"start-stop", 1}, {"stop-only", 2}, {"wait-start", 3}};

const std::array<std::string, 4> kSuffixes = {"", "1", "2", "3"};

class MethodList : public Handler
{
public:
    MethodList(World &world, const std::string &stem, const Dialect &dialect)
        : Handler(world, stem), dialect_(dialect)
    {
    }

    void change(Leaf &leaf) override
    {
        last_oper_ = leaf.oper;
        fill(leaf);
        if (!list_.foreign_node_seen || !complete())
            return;
        sendFromLoop();
        list_ = List();
    }

    void end() override
    {
        if (!complete())
            return;
        pairsOrEnd();
        world_.debug(changeFunction(), endLine());
        requestOrEnd(1, last_oper_, payload(), [](std::int32_t) { return End{7}; });
    }

protected:
    // The gathered record.
    struct List {
        std::string domain;
        std::uint32_t kind = 0;
        std::uint32_t type = 0;
        std::uint32_t stage = 0;
        Groups groups;
        std::set<std::string> kinds_seen;
        std::set<std::string> group_leaves_seen;
        bool foreign_node_seen = false;
    };

    const List &list() const
    {
        return list_;
    }

private:
    virtual std::string loopLine() const = 0;
    virtual std::string endLine() const = 0;
    bool complete() const
    {
        return list_.kinds_seen == dialect_.complete;
    }

    static bool numbered(const std::string &name, const std::string &stem)
    {
        for (const std::string &suffix : kSuffixes) {
            if (name == stem + suffix)
                return true;
        }
        return false;
    }

    bool ignored(const std::string &name) const
    {
        return name == dialect_.servers_node || (numbered(name, "GroupNum") && name != "GroupNum");
    }

    void fill(const Leaf &leaf)
    {
        if (leaf.name == dialect_.domain_leaf)
            fillDomain(leaf);
        else if (leaf.name == dialect_.protocol_leaf)
            fillProtocol(leaf);
        else if (!dialect_.stage_leaf.empty() && leaf.name == dialect_.stage_leaf)
            fillStage(leaf);
        else if (numbered(leaf.name, "groupType"))
            fillGroupType(leaf);
        else if (numbered(leaf.name, "groupName"))
            fillGroupName(leaf);
        else if (!ignored(leaf.name) && list_.kinds_seen.contains("domain"))
            list_.foreign_node_seen = true;
    }

    void fillDomain(const Leaf &leaf)
    {
        list_.domain = cut(leaf.text(), 63);
        list_.kinds_seen.insert("domain");
    }

    void fillProtocol(const Leaf &leaf)
    {
        list_.kind = dialect_.kind_with_protocol;
        if (const auto found = dialect_.protocols.find(leaf.text());
            found != dialect_.protocols.end())
            list_.type = found->second;
        list_.kinds_seen.insert("protocol");
    }

    void fillStage(const Leaf &leaf)
    {
        const std::string word = leaf.text();
        if (const auto found = kStages.find(word); found != kStages.end())
            list_.stage = found->second;
        list_.kinds_seen.insert("stage");
        if (word == "none") {
            list_.groups.setType(1);
            list_.kinds_seen.insert({"group type", "group name"});
        }
    }

    void fillGroupType(const Leaf &leaf)
    {
        if (list_.groups.full())
            world_.note("group leaf beyond the fourth pair");
        const auto found = dialect_.group_types.find(leaf.text());
        if (found != dialect_.group_types.end())
            list_.groups.setType(found->second);
        else
            world_.note("group type word unknown");
        if (list_.groups.currentHasName())
            list_.groups.moveOn();
        list_.kinds_seen.insert("group type");
        list_.group_leaves_seen.insert(leaf.name);
    }

    void fillGroupName(const Leaf &leaf)
    {
        const std::uint32_t type = list_.groups.currentType();
        const auto name = leaf.textOrNull();
        if (name && list_.groups.completedOtherwise(*name, type))
            world_.note("group name known with another type");
        if (!name || list_.groups.completed(*name, type)) {
            world_.note(name ? "group named twice" : "group without a name");
            if (name && list_.groups.isLastCompleted(*name, type))
                world_.note("group named as the last one");
            world_.error(fillFunction("InfoFill"),
                         "Input group exist same name for group[" + std::to_string(type) + "]");
            throw End{7};
        }
        list_.groups.setName(*name);
        if (type != 0)
            list_.groups.moveOn();
        list_.kinds_seen.insert("group name");
        list_.group_leaves_seen.insert(leaf.name);
    }

    // Half a pair ends the walk with the iterator left unfreed; so do groups
    // without an accounting stage.
    void pairsOrEnd() const
    {
        const End unpaired = {1, false};
        const auto seen = [this](const std::string &leaf) {
            return list_.group_leaves_seen.contains(leaf);
        };
        for (const std::string &suffix : kSuffixes) {
            if (seen("groupType" + suffix) != seen("groupName" + suffix)) {
                world_.note("half a group pair");
                throw unpaired;
            }
        }
        if (!dialect_.stage_leaf.empty() && !list_.group_leaves_seen.empty() && list_.stage == 0) {
            world_.note("groups without a stage");
            throw unpaired;
        }
    }

    void sendFromLoop()
    {
        pairsOrEnd();
        world_.debug(changeFunction(), loopLine());
        requestOrEnd(1, last_oper_, payload(), [](std::int32_t) { return End{7, false}; });
        world_.note("method list sent from the loop");
    }

    std::string payload() const
    {
        Bytes bytes(244);
        bytes.text(0, list_.domain).word(64, list_.kind).word(68, list_.type).word(72, list_.stage);
        list_.groups.put(bytes, 80);
        return bytes.str();
    }

    const Dialect &dialect_;
    List list_;
    std::uint32_t last_oper_ = 0;
};

class Authentication : public MethodList
{
public:
    Authentication(World &world, const std::string &stem) : MethodList(world, stem, kAuthentication)
    {
    }

private:
    std::string loopLine() const override
    {
        return say("Set domain authen info: domainName=%s, type=%d,cmdoverflag:%s.",
                   {list().domain, shown(list().type), "true"});
    }
    std::string endLine() const override
    {
        return say("Set domain authen info: groupName=%s, type=%d.",
                   {list().domain, shown(list().type)});
    }
};

class Accounting : public MethodList
{
public:
    Accounting(World &world, const std::string &stem) : MethodList(world, stem, kAccounting) {}

private:
    std::string loopLine() const override
    {
        return endLine();
    }
    std::string endLine() const override
    {
        return say("Set domain account info: groupName=%s, type=%d.",
                   {list().domain, shown(list().type)});
    }
};

} // namespace

std::unique_ptr<Handler> makeAuthentication(World &world, const std::string &stem)
{
    return std::make_unique<Authentication>(world, stem);
}

std::unique_ptr<Handler> makeAccounting(World &world, const std::string &stem)
{
    return std::make_unique<Accounting>(world, stem);
}

} // namespace aaanc::test::model
