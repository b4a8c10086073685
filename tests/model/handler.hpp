// What a handler is to the walk, and the rows that tell the handlers apart.
#pragma once

#include "world.hpp"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace aaanc::test::model
{

// The part of one callback that is its own. Made anew for every callback.
class Handler
{
public:
    Handler(World &world, const std::string &stem) : world_(world), stem_(stem) {}
    virtual ~Handler() = default;
    // One change that has a value and a node name. Throws End to end the walk.
    virtual void change(Leaf &leaf) = 0;
    // The changes ran out.
    virtual void end() {}

protected:
    // The function that the lines of a change are logged under, and the one
    // that fills the record.
    std::string changeFunction() const
    {
        return stem_ + "OneLeafChangeParse";
    }
    std::string fillFunction(const char *ending) const
    {
        return stem_ + ending;
    }
    void refused(std::int32_t code);
    // The key of the leaf's list entry. `printed` is what the error line calls it.
    std::string keyOrEnd(Leaf &leaf, const std::string &list, const std::string &key,
                         const std::string &printed);
    // Ends the walk with `result` unless the service accepts.
    void requestOrEnd(std::uint32_t type, std::uint32_t oper, const std::string &payload,
                      const std::function<End(std::int32_t)> &result);

    World &world_;

private:
    std::string stem_;
};

using MakeHandler = std::unique_ptr<Handler> (*)(World &, const std::string &stem);

std::unique_ptr<Handler> makeGlobal(World &world, const std::string &stem);
std::unique_ptr<Handler> makeSourceInterface(World &world, const std::string &stem);
std::unique_ptr<Handler> makeServerGroup(World &world, const std::string &stem);
std::unique_ptr<Handler> makeServerGroupVrf(World &world, const std::string &stem);
std::unique_ptr<Handler> makeDomain(World &world, const std::string &stem);
std::unique_ptr<Handler> makeRadiusIpv4(World &world, const std::string &stem);
std::unique_ptr<Handler> makeRadiusIpv6(World &world, const std::string &stem);
std::unique_ptr<Handler> makeTacacsIpv4(World &world, const std::string &stem);
std::unique_ptr<Handler> makeTacacsIpv6(World &world, const std::string &stem);
std::unique_ptr<Handler> makeAuthentication(World &world, const std::string &stem);
std::unique_ptr<Handler> makeAccounting(World &world, const std::string &stem);

} // namespace aaanc::test::model
