#include "target.hpp"

namespace aaanc::test::fuzz
{

const Target *findTarget(std::string_view name)
{
    for (const Target &target : allTargets()) {
        if (target.name == name)
            return &target;
    }
    return nullptr;
}

} // namespace aaanc::test::fuzz
