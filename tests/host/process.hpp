// Runs a program, as a user does.
#pragma once

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <sys/types.h>

namespace aaanc::test
{

struct Outcome {
    int status = 0; // what it exited with; -N when signal N ended it
    std::string output;
    std::string errors;
};

// A program under way, with its outputs collected.
class Process
{
public:
    // AAANC_EXECUTABLE with these arguments, in `directory`, where what it writes
    // is collected in files.
    Process(const std::string &directory, const std::vector<std::string> &arguments);
    [[nodiscard]] pid_t id() const
    {
        return id_;
    }
    Outcome wait();

private:
    std::string output_;
    std::string errors_;
    pid_t id_ = -1;
};

Outcome runAaanc(const std::vector<std::string> &arguments);

// Waits until `done` says so, 10 seconds at most.
template <typename Condition> bool eventually(Condition done)
{
    for (int i = 0; i < 1000; ++i) {
        if (done()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

// A fresh directory, removed in the end.
class ScratchDirectory
{
public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory &) = delete;
    ScratchDirectory &operator=(const ScratchDirectory &) = delete;
    [[nodiscard]] const std::string &path() const
    {
        return path_;
    }
    // Writes a file in it; its path.
    [[nodiscard]] std::string write(const std::string &name, const std::string &text) const;

private:
    std::string path_;
};

} // namespace aaanc::test
