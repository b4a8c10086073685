#include "targets.hpp"

namespace aaanc::test::fuzz
{

const std::vector<Target> &allTargets()
{
    static const std::vector<Target> targets = {{"edit-xml", fuzzXmlEdit},
                                                {"edit-json", fuzzJsonEdit},
                                                {"trace", fuzzTrace},
                                                {"dump", fuzzDump},
                                                {"frames", fuzzFrames}};
    return targets;
}

} // namespace aaanc::test::fuzz
