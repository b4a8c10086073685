#include "input_file.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "cmf_wire.hpp"
#include "input_error.hpp"

namespace aaanc
{

namespace
{

constexpr const char *kStandardInput = "-";

} // namespace

std::string inputName(const std::filesystem::path &file)
{
    return file == kStandardInput ? "standard input" : file.string();
}

std::string readInput(const std::filesystem::path &file, std::size_t limit)
{
    const auto fail = [&](const std::string &reason) {
        throw InputError(inputName(file), 0, "", reason);
    };
    Descriptor opened;
    if (file != kStandardInput) {
        opened = Descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC));
        if (!opened) {
            fail(std::strerror(errno));
        }
    }
    std::string text;
    std::string chunk(std::size_t{1} << 16U, '\0');
    while (true) {
        const ssize_t size =
            read(opened ? opened.number() : STDIN_FILENO, chunk.data(), chunk.size());
        if (size == 0) {
            return text;
        }
        if (size > 0) {
            text.append(chunk, 0, static_cast<std::size_t>(size));
        } else if (errno != EINTR) {
            fail(errno == EISDIR ? "is a directory" : std::strerror(errno));
        }
        if (text.size() > limit) {
            fail(fmt::format("larger than {} MiB", limit >> 20U));
        }
    }
}

void refuseStandardInputTwice(const std::vector<std::filesystem::path> &files)
{
    if (std::ranges::count(files, std::filesystem::path(kStandardInput)) > 1) {
        throw InputError(inputName(kStandardInput), 0, "", "is named twice");
    }
}

} // namespace aaanc
