#include "model.hpp"

#include "handler.hpp"
#include "text.hpp"

#include <array>
#include <stdexcept>

namespace aaanc::test::model
{
namespace
{

// What a change without a node name brings.
struct Nameless {
    const char *text;
    std::int32_t result;
};

constexpr Nameless kNoLastNode = {"Get last node name in xpath %s failed.", 5};
constexpr Nameless kNoNode = {"AAA get node failed, path: %s.", 7};

struct Subtree {
    const char *callback;
    const char *stem; // of the functions below the callback
    const char *entry_line;
    const char *change_line; // empty: the handler writes none
    const char *node_line;
    Nameless nameless;
    bool skips_valueless; // else such a change ends the walk
    MakeHandler make;
};

const std::array<Subtree, 11> kSubtrees = {{
    {"aaaNcGlobalConfChanges", "aaaNcGlobal", "Config global start fail: path %s, notify event %d.",
     "Global xpath %s, type %d, change oper %d.", "Global node name %s.", kNoLastNode, true,
     makeGlobal},
    {"aaaNcSrcInterfaceConfChanges", "aaaNcSrcInterface",
     "Config global source interface: path %s, notify event %d.",
     "Source interface xpath %s, type %d, change oper %d.", "Source interface node name %s.",
     kNoLastNode, false, makeSourceInterface},
    {"aaaNcServerGroupConfChanges", "aaaNcServerGroup",
     "Config server group: path %s, notify event %d.",
     "Server group xpath %s, type %d, change oper %d.", "Receive node name %s.", kNoLastNode, false,
     makeServerGroup},
    {"aaaNcServerGroupVrfConfChanges", "aaaNcServerGroupVrf",
     "Config server group: path %s, notify event %d.",
     "Server group xpath %s, type %d, change oper %d.", "Receive node name %s.", kNoLastNode, false,
     makeServerGroupVrf},
    {"aaaNcDomainConfChanges", "aaaNcDomain", "Config domain: path %s, notify event %d.", "",
     "Receive node name %s.", kNoLastNode, false, makeDomain},
    {"aaaNcRadiusIpv4ConfChanges", "aaaNcRadiusIpv4",
     "Config radius ipv4 server: path %s, notify event %d.",
     "Radius ipv4 server xpath %s, type %d, change oper %d.", "Recv node is %s.", kNoLastNode,
     false, makeRadiusIpv4},
    {"aaaNcRadiusIpv6ConfChanges", "aaaNcRadiusIpv6",
     "Config radius ipv6 server: path %s, notify event %d.",
     "Radius ipv6 server xpath %s, type %d, change oper %d.", "Recv node is %s.", kNoLastNode,
     false, makeRadiusIpv6},
    {"aaaNctacacsIpv4ConfChanges", "aaaNcTacacsIpv4",
     "Config tacacs ipv4 server: path %s, notify event %d.",
     "Tacacs ipv4 server xpath %s, type %d, change oper %d.", "Recv node is %s.", kNoNode, false,
     makeTacacsIpv4},
    {"aaaNctacacsIpv6ConfChanges", "aaaNcTacacsIpv6",
     "Config tacacs ipv6 server: path %s, notify event %d.",
     "Tacacs ipv6 server xpath %s, type %d, change oper %d.", "Recv node is %s.", kNoNode, false,
     makeTacacsIpv6},
    {"aaaNcDomainAuthenConfChanges", "aaaNcDomainAuthen",
     "Xpath for aaa domain authen dot1x change: %s, notify event %d.",
     "Domain authen xpath %s, type %d, change oper %d.", "Recv node is %s.", kNoNode, false,
     makeAuthentication},
    {"aaaNcDomainAccountConfChanges", "aaaNcDomainAccount",
     "Xpath for aaa domain accounting dot1x change: %s, notify event %d.",
     "Domain account xpath %s, type %d, change oper %d.", "Recv node is %s.", kNoNode, false,
     makeAccounting},
}};

const Subtree &subtreeOf(const std::string &callback)
{
    for (const Subtree &subtree : kSubtrees) {
        if (callback == subtree.callback)
            return subtree;
    }
    throw std::invalid_argument("no such callback: " + callback);
}

// Frees the values of a change when it goes out of scope, however that happens.
class Values
{
public:
    Values(World &world, const Change &change) : world_(world), change_(change) {}
    Values(const Values &) = delete;
    Values &operator=(const Values &) = delete;
    ~Values()
    {
        world_.freeValue("old", change_.old_value.has_value());
        world_.freeValue("new", change_.new_value.has_value());
    }
    const std::optional<Value> &chosen() const
    {
        static const std::optional<Value> kNone;
        if (change_.oper > 2)
            return kNone;
        return change_.oper == 2 ? change_.old_value : change_.new_value;
    }
    std::string pointer(const char *which) const
    {
        const auto &value = which[0] == 'o' ? change_.old_value : change_.new_value;
        return value ? which + ('#' + std::to_string(world_.changeNumber())) : "null";
    }

private:
    World &world_;
    const Change &change_;
};

class Walk
{
public:
    Walk(World &world, const Subtree &subtree)
        : world_(world), subtree_(subtree), line_function_(named("OneLeafChangeParse")),
          walk_function_(named("LeafChangesParse")), handler_(subtree.make(world, subtree.stem))
    {
    }

    // Throws End.
    void all()
    {
        const Change *change = nullptr;
        std::int32_t code = world_.next(change);
        for (; code == 0; code = world_.next(change))
            one(*change);
        if (code != 5) {
            world_.errorWithReason(
                walk_function_,
                say("Get next change for xpath %s failed: ", {shown(world_.scenario().xpath)}),
                code);
            throw End{code};
        }
        handler_->end();
    }

private:
    std::string named(const char *layer) const
    {
        return std::string(subtree_.stem) + layer;
    }

    void one(const Change &change)
    {
        const Values values(world_, change);
        if (!values.chosen())
            return valueless(change, values);

        Leaf leaf(change.oper, *values.chosen());
        if (*subtree_.change_line != '\0')
            world_.debug(line_function_,
                         say(subtree_.change_line,
                             {shown(leaf.xpath()), shown(leaf.type()), shown(change.oper)}));
        leaf.name = nameOrEnd(leaf);
        world_.debug(line_function_, say(subtree_.node_line, {leaf.name}));
        handler_->change(leaf);
    }

    void valueless(const Change &change, const Values &values)
    {
        world_.error(line_function_,
                     say("Choose value for oper %d failed, old value %p, new value %p.",
                         {shown(change.oper), values.pointer("old"), values.pointer("new")}));
        if (!subtree_.skips_valueless)
            throw End{8};
    }

    std::string nameOrEnd(const Leaf &leaf)
    {
        const auto xpath = leaf.xpath();
        const auto name = xpath ? world_.nodeName(*xpath) : std::nullopt;
        if (!name) {
            world_.error(line_function_, say(subtree_.nameless.text, {shown(xpath)}));
            throw End{subtree_.nameless.result};
        }
        return *name;
    }

    World &world_;
    const Subtree &subtree_;
    std::string line_function_;
    std::string walk_function_;
    std::unique_ptr<Handler> handler_;
};

std::int32_t walk(World &world, const Subtree &subtree)
{
    try {
        Walk(world, subtree).all();
        world.freeIterator();
        return 0;
    } catch (const End &end) {
        if (end.frees_iterator)
            world.freeIterator();
        return end.result;
    }
}

std::int32_t callback(World &world, const Subtree &subtree)
{
    const Scenario &scenario = world.scenario();
    world.debug(subtree.callback,
                say(subtree.entry_line, {shown(scenario.xpath), shown(scenario.event)}));
    if (scenario.event != 1 && scenario.event != 3)
        return 0;
    if (const std::int32_t code = world.openIterator()) {
        world.errorWithReason(
            std::string(subtree.stem) + "LeafChangesParse",
            say("Get changes iter for xpath %s failed: ", {shown(scenario.xpath)}), code);
        return code;
    }
    return walk(world, subtree);
}

} // namespace

void Handler::refused(std::int32_t code)
{
    world_.debug(changeFunction(), "Cmf recv decode error code=<" + std::to_string(code) + ">.");
}

std::string Handler::keyOrEnd(Leaf &leaf, const std::string &list, const std::string &key,
                              const std::string &printed)
{
    if (const auto value = world_.key(leaf, list, key))
        return *value;
    world_.error(changeFunction(),
                 say("Get value for key %s in xpath %s failed.", {printed, shown(leaf.xpath())}));
    throw End{5};
}

void Handler::requestOrEnd(std::uint32_t type, std::uint32_t oper, const std::string &payload,
                           const std::function<End(std::int32_t)> &result)
{
    const std::int32_t code = world_.request(type, oper, payload);
    if (code != 0) {
        refused(code);
        throw result(code);
    }
}

Expectation explain(const Scenario &scenario)
{
    World world(scenario);
    return world.finish(callback(world, subtreeOf(scenario.callback)));
}

Trace expect(const Scenario &scenario)
{
    return explain(scenario).trace;
}

} // namespace aaanc::test::model
