// The entry point that libFuzzer calls, for the target AAANC_FUZZ_TARGET.
#include "target.hpp"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace aaanc::test::fuzz;
    static const Target *const target = findTarget(AAANC_FUZZ_TARGET);
    const std::string finding = target->run(Bytes(data, size));
    if (finding.empty())
        return 0;
    std::fprintf(stderr, "%s\n", finding.c_str());
    std::abort();
}
