#include "input_file.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include <fmt/format.h>

#include "input_error.hpp"

namespace aaanc
{

namespace
{

// Far above the configuration of any switch; a file of this size still takes
// only seconds.
constexpr std::size_t kMaxFileSize = std::size_t{16} << 20U;

} // namespace

std::string inputName(const std::filesystem::path &file)
{
    return file == "-" ? "standard input" : file.string();
}

std::string readInput(const std::filesystem::path &file)
{
    const std::string name = inputName(file);
    std::ifstream stream;
    if (file != "-") {
        if (std::filesystem::is_directory(file)) {
            throw InputError(name, 0, "", "is a directory");
        }
        stream.open(file, std::ios::binary);
        if (!stream) {
            throw InputError(name, 0, "", std::strerror(errno));
        }
    }
    std::istream &input = file == "-" ? std::cin : stream;
    std::string text;
    std::string chunk(std::size_t{1} << 16U, '\0');
    while (input.read(chunk.data(), static_cast<std::streamsize>(chunk.size())),
           input.gcount() > 0) {
        text.append(chunk, 0, static_cast<std::size_t>(input.gcount()));
        if (text.size() > kMaxFileSize) {
            throw InputError(name, 0, "",
                             fmt::format("larger than {} MiB", kMaxFileSize / (1U << 20U)));
        }
    }
    return text;
}

} // namespace aaanc
