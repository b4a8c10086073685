// The platform as the model knows it: answers as the scenario says, and every
// call written down.
#pragma once

#include "model.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace aaanc::test::model
{

// The walk ends here, with this result.
struct End {
    std::int32_t result = 0;
    bool frees_iterator = true;
};

// One change as a handler sees it: the value that counts for the operation and
// the name of its node.
class Leaf
{
public:
    Leaf(std::uint32_t operation, const Value &value) : oper(operation), value_(&value)
    {
        xpath_ends_at_ = value.xpath ? value.xpath->size() : 0;
    }

    // The xpath as it stands: reading keys may have cut it.
    std::optional<std::string> xpath() const;
    const std::string &wholeXpath() const
    {
        return *value_->xpath;
    }
    void cutXpathAt(std::size_t position);

    std::uint32_t type() const
    {
        return value_->type;
    }
    // The text of a string, or nothing where its pointer is null.
    std::optional<std::string> textOrNull() const;
    // The text of a string; that of a null pointer is empty.
    std::string text() const;
    // The number, as wide as its type.
    std::uint32_t number() const;
    bool deleted() const
    {
        return oper == 2;
    }

    std::uint32_t oper;
    std::string name;

private:
    const Value *value_;
    std::size_t xpath_ends_at_;
};

// The parameter block, as far as it is ever sent.
struct Block {
    std::uint32_t type = 0;
    std::uint32_t do_flag = 0;
    std::string payload;
};

class World
{
public:
    explicit World(const Scenario &scenario) : scenario_(scenario), log_level_(scenario.log_level)
    {
    }

    void debug(const std::string &function, const std::string &text);
    void error(const std::string &function, const std::string &text);
    // An error line that ends in the text of `code` and a full stop.
    void errorWithReason(const std::string &function, const std::string &text, std::int32_t code);

    std::int32_t openIterator();
    // The result of sr_get_change_next() and, where it is 0, the change.
    std::int32_t next(const Change *&change);
    void freeValue(const char *which, bool present);
    void freeIterator();
    // The number of the change that next() gave last.
    std::size_t changeNumber() const
    {
        return next_calls_;
    }

    std::optional<std::string> nodeName(const std::string &xpath);
    std::optional<std::string> key(Leaf &leaf, const std::string &list, const std::string &key);
    void boundedCopy(const std::string &source, std::size_t size);
    // The decoded bytes, or nothing where the text cannot be decoded.
    std::optional<std::string> unhex(const std::string &text);

    // Fills the block, then sends it: the two halves of a request.
    void set(Block &block, std::uint32_t type, std::uint32_t oper, const std::string &payload);
    std::int32_t send(const Block &block);
    std::int32_t request(std::uint32_t type, std::uint32_t oper, const std::string &payload);

    void note(const std::string &fact)
    {
        facts_.happened.insert(fact);
    }
    Facts &facts()
    {
        return facts_;
    }
    const Scenario &scenario() const
    {
        return scenario_;
    }
    Expectation finish(std::int32_t result);

private:
    void call(std::string line);
    void log(const char *severity, const std::string &function, const std::string &text);
    std::int32_t exchange(const Block &block, const Exchange &behaviour);
    std::int32_t step(const std::string &call_text, std::int32_t code, const std::string &failure);
    std::int32_t answer(const Reply &reply);

    const Scenario &scenario_;
    int log_level_;
    std::size_t calls_ = 0;
    std::size_t next_calls_ = 0;
    std::size_t node_name_calls_ = 0;
    std::size_t key_calls_ = 0;
    std::size_t unhex_calls_ = 0;
    std::size_t requests_ = 0;
    Trace trace_;
    Facts facts_;
};

} // namespace aaanc::test::model
