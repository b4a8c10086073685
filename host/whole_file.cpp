#include "whole_file.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "input_error.hpp"
#include "printable.hpp"

namespace aaanc
{

namespace
{

// Of a link, it is the target that is replaced.
std::filesystem::path targetOf(const std::filesystem::path &file)
{
    std::error_code dangling;
    const std::filesystem::path target = std::filesystem::canonical(file, dangling);
    return dangling ? file : target;
}

} // namespace

WholeFile::WholeFile(const std::filesystem::path &place, TerminationGuard &guard)
    : place_(targetOf(place))
{
    const auto fail = [&](const std::string &reason) {
        throw InputError(place.string(), 0, "", reason);
    };
    std::error_code ignored;
    if (std::filesystem::is_directory(place_, ignored)) {
        fail("is a directory");
    }
    if (std::filesystem::exists(place_, ignored) && access(place_.c_str(), W_OK) != 0) {
        fail(std::strerror(errno));
    }
    if (std::filesystem::is_other(place_, ignored)) {
        stream_.reset(std::fopen(place_.c_str(), "we"));
    } else {
        guard.removeAtEnd([&] {
            std::string name = place_.string() + ".XXXXXX";
            const int descriptor = mkostemp(name.data(), O_CLOEXEC);
            if (descriptor < 0) {
                fail(std::strerror(errno));
            }
            beside_ = name;
            stream_.reset(fdopen(descriptor, "w"));
            return [name] { unlink(name.c_str()); };
        });
    }
    if (!stream_) {
        fail(std::strerror(errno));
    }
}

WholeFile::~WholeFile()
{
    if (!beside_.empty()) {
        unlink(beside_.c_str());
    }
}

void WholeFile::putInPlace()
{
    const bool written = std::fflush(stream_.get()) == 0 && std::ferror(stream_.get()) == 0;
    if (!written) {
        throw std::runtime_error(
            fmt::format("{}: could not be written whole", printable(place_.string())));
    }
    if (!beside_.empty() && std::rename(beside_.c_str(), place_.c_str()) != 0) {
        throw std::runtime_error(
            fmt::format("{}: {}", printable(place_.string()), std::strerror(errno)));
    }
    beside_.clear();
}

} // namespace aaanc
