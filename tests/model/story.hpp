// What happened in a scenario, taken from its trace for the coverage table.
#pragma once

#include "model.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace aaanc::test::model
{

// A request as it was encoded.
struct Sent {
    std::uint32_t type = 0;
    std::uint32_t do_flag = 0;
    std::uint32_t length = 0;
    std::string payload;

    // The text that starts at `offset`.
    std::string text(std::size_t offset) const;
    // The numbers of one, two and four bytes at `offset`.
    std::uint32_t byte(std::size_t offset) const;
    std::uint32_t half(std::size_t offset) const;
    std::uint32_t word(std::size_t offset) const;
};

// One change that the walk took.
struct Taken {
    std::uint32_t oper = 0;
    std::string leaf; // the name of the node; empty where there is none
    std::string text; // of a string
};

struct Story {
    Story(const Scenario &what, const Expectation &expected);

    const Scenario &scenario;
    const Facts &facts;
    std::int32_t result = 0;
    std::vector<Sent> requests;
    std::vector<Taken> taken;
    std::size_t contexts = 0; // requests that were begun
    bool iterator_freed = false;
    bool key_missing = false;
    bool key_not_decoded = false;
    std::string errors; // the ERR and the DBG lines, a line each
    std::string debugs;

    bool logged(std::string_view text) const
    {
        return errors.find(text) != std::string::npos || debugs.find(text) != std::string::npos;
    }
    bool happened(const char *fact) const
    {
        return facts.happened.count(fact) != 0;
    }
    // The walk ended before the changes did.
    bool endedEarly() const
    {
        return taken.size() < scenario.changes.size();
    }
    // Requests of this type and direction.
    std::size_t count(std::uint32_t type, std::uint32_t do_flag) const;
    // Whether one of them holds this text at `offset`.
    bool sent(std::uint32_t type, std::uint32_t do_flag, std::size_t offset,
              std::string_view text) const;

private:
    void read(const std::string &line);
    void readRequest(std::string_view line);
};

} // namespace aaanc::test::model
