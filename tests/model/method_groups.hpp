// The up to four server groups of a method list.
#pragma once

#include "bytes.hpp"
#include "text.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

namespace aaanc::test::model
{

struct Group {
    std::uint32_t type = 0;
    std::string name;
};

// The groups fill in the order in which pairs complete. Behind the fourth there
// is only a shadow that stays empty.
class Groups
{
public:
    std::uint32_t currentType() const
    {
        return full() ? 0 : groups_.at(current_).type;
    }
    void setType(std::uint32_t type)
    {
        if (!full())
            groups_.at(current_).type = type;
    }
    void setName(const std::string &name)
    {
        if (!full())
            groups_.at(current_).name = cut(name, 32);
    }
    bool currentHasName() const
    {
        return !full() && !groups_.at(current_).name.empty();
    }
    void moveOn()
    {
        ++current_;
    }
    bool full() const
    {
        return current_ == groups_.size();
    }
    bool completed(const std::string &name, std::uint32_t type) const
    {
        return std::any_of(groups_.begin(), groups_.begin() + current_, [&](const Group &group) {
            return group.name == name && group.type == type;
        });
    }
    // For the record only: such a name with another type, or in the last place.
    bool completedOtherwise(const std::string &name, std::uint32_t type) const
    {
        return std::any_of(groups_.begin(), groups_.begin() + current_, [&](const Group &group) {
            return group.name == name && group.type != type;
        });
    }
    bool isLastCompleted(const std::string &name, std::uint32_t type) const
    {
        return current_ > 1 && groups_.at(current_ - 1).name == name &&
               groups_.at(current_ - 1).type == type;
    }
    void put(Bytes &bytes, std::size_t offset) const
    {
        for (const Group &group : groups_) {
            bytes.word(offset, group.type).text(offset + 4, group.name);
            offset += 40;
        }
    }

private:
    std::array<Group, 4> groups_;
    std::size_t current_ = 0;
};

} // namespace aaanc::test::model
