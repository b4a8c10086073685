// The global settings and the source interface.
#include "bytes.hpp"
#include "handler.hpp"
#include "text.hpp"

#include <optional>

namespace aaanc::test::model
{
namespace
{

End refusedWith7(std::int32_t)
{
    return {7};
}

class Global : public Handler
{
public:
    using Handler::Handler;

    void change(Leaf &leaf) override
    {
        if (leaf.name == "startFailType") {
            const auto kind = static_cast<std::uint8_t>(leaf.number());
            requestOrEnd(21, leaf.oper, Bytes(1).byte(0, kind).str(), refusedWith7);
        } else if (leaf.name == "accountInterval") {
            requestOrEnd(5, leaf.oper, Bytes(4).word(0, leaf.number()).str(), refusedWith7);
        } else {
            world_.debug(changeFunction(),
                         say("Start fail node name %s is not support.", {leaf.name}));
        }
    }
};

// A text field of fixed size; a shorter text over a longer one leaves the old
// tail behind its terminator.
class BoundedField
{
public:
    explicit BoundedField(std::size_t size) : bytes_(size, '\0') {}
    void fill(World &world, const std::string &text)
    {
        world.boundedCopy(text, bytes_.size());
        const std::string stored = cut(text, bytes_.size() - 1) + '\0';
        if (seen_ && stored.size() < untilNul(bytes_).size() + 1)
            world.note("old tail kept behind a shorter text");
        bytes_.replace(0, stored.size(), stored);
        seen_ = true;
    }
    bool seen() const
    {
        return seen_;
    }
    const std::string &bytes() const
    {
        return bytes_;
    }

private:
    std::string bytes_;
    bool seen_ = false;
};

class SourceInterface : public Handler
{
public:
    using Handler::Handler;

    void change(Leaf &leaf) override
    {
        if (leaf.name == "srcInterfaceName")
            pair_.interface.fill(world_, leaf.text());
        else if (leaf.name == "vrfName")
            pair_.vrf.fill(world_, leaf.text());
        if (!pair_.interface.seen() || !pair_.vrf.seen())
            return;
        requestOrEnd(19, leaf.oper, pair_.interface.bytes() + pair_.vrf.bytes(), refusedWith7);
        pair_ = Pair();
    }

    void end() override
    {
        if (pair_.interface.seen() || pair_.vrf.seen())
            world_.note("half a source interface dropped");
    }

private:
    struct Pair {
        BoundedField interface {
            40
        };
        BoundedField vrf{33};
    };
    Pair pair_;
};

} // namespace

std::unique_ptr<Handler> makeGlobal(World &world, const std::string &stem)
{
    return std::make_unique<Global>(world, stem);
}

std::unique_ptr<Handler> makeSourceInterface(World &world, const std::string &stem)
{
    return std::make_unique<SourceInterface>(world, stem);
}

} // namespace aaanc::test::model
