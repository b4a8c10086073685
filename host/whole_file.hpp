// A file that is not at its place before it is whole.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>

#include "termination.hpp"

namespace aaanc
{

class WholeFile
{
public:
    // Makes a file beside `place`, for its owner alone, with a name that begins like
    // it. Throws InputError where that cannot be. A device or a pipe has no file
    // beside it, but is written to at once.
    WholeFile(const std::filesystem::path &place, TerminationGuard &guard);
    // Removes what has not been put in place, as a signal does.
    ~WholeFile();
    WholeFile(const WholeFile &) = delete;
    WholeFile &operator=(const WholeFile &) = delete;

    [[nodiscard]] std::FILE *stream() const
    {
        return stream_.get();
    }
    // Ends the writing, and replaces a file that is there. Throws std::runtime_error
    // when not all could be written; then nothing is replaced.
    void putInPlace();

private:
    struct Close {
        void operator()(std::FILE *file) const
        {
            std::fclose(file);
        }
    };
    std::filesystem::path place_;
    std::filesystem::path beside_; // empty once in place
    std::unique_ptr<std::FILE, Close> stream_;
};

} // namespace aaanc
