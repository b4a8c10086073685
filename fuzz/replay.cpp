// Plays the files of a corpus through a target, without a fuzzer:
// replay TARGET FILE-OR-DIRECTORY...
#include "target.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

namespace fs = std::filesystem;
using namespace aaanc::test::fuzz;

namespace
{

std::vector<fs::path> filesOf(const fs::path &path)
{
    if (!fs::is_directory(path))
        return {path};
    std::vector<fs::path> files;
    for (const auto &entry : fs::directory_iterator(path))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

// Whether the file can be read and nothing is wrong with it.
bool replay(const Target &target, const fs::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> input((std::istreambuf_iterator<char>(stream)), {});
    if (!stream.good() && !stream.eof()) {
        std::cerr << file.string() << ": cannot be read\n";
        return false;
    }
    // Said before, in case that what is played does not come back.
    std::cout << file.string() << std::endl;
    const std::vector<std::uint8_t> bytes(input.begin(), input.end());
    const std::string finding = target.run(Bytes(bytes.data(), bytes.size()));
    if (!finding.empty())
        std::cerr << file.string() << ":\n" << finding << '\n';
    return finding.empty();
}

} // namespace

int main(int argc, char **argv)
{
    const Target *target = argc > 2 ? findTarget(argv[1]) : nullptr;
    if (target == nullptr) {
        std::cerr << "usage: " << argv[0] << " TARGET FILE-OR-DIRECTORY...\ntargets:";
        for (const Target &known : allTargets())
            std::cerr << ' ' << known.name;
        std::cerr << '\n';
        return 2;
    }
    std::size_t played = 0;
    bool good = true;
    for (int at = 2; at < argc; ++at) {
        for (const fs::path &file : filesOf(argv[at])) {
            good = replay(*target, file) && good;
            ++played;
        }
    }
    std::cout << played << " inputs\n";
    return good && played > 0 ? 0 : 1;
}
