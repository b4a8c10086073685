// An orderly end by SIGHUP, SIGINT and SIGTERM.
#pragma once

#include <atomic>
#include <csignal>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "cmf_wire.hpp"

namespace aaanc
{

// How something that has been made is removed again. May be called more than once,
// and when it has gone already.
using Removal = std::function<void()>;

// While it lives, SIGHUP, SIGINT and SIGTERM remove what has been noted and end the
// process, with status 128 + the signal's number, whatever its threads are waiting
// for. A SIGHUP that nohup(1) has had ignored stays so. Made before any other thread,
// since threads inherit which signals are blocked.
class TerminationGuard
{
public:
    TerminationGuard();
    ~TerminationGuard();
    TerminationGuard(const TerminationGuard &) = delete;
    TerminationGuard &operator=(const TerminationGuard &) = delete;

    // Notes how what `make` makes is removed. A signal waits meanwhile, so that
    // nothing is left behind.
    void removeAtEnd(const std::function<Removal()> &make);

    // A signal calls `end` from now on, and leaves the process a moment to come to
    // its end by itself. An empty one takes that back.
    void endBy(std::function<void()> end);
    // The exit status that a signal asks for; 0 before one.
    [[nodiscard]] int status() const
    {
        return status_;
    }

private:
    void watch();

    std::mutex mutex_;
    std::vector<Removal> removals_;
    std::function<void()> end_;
    std::atomic<int> status_ = 0;
    Descriptor signals_;
    Descriptor ending_;
    std::thread thread_; // started last
};

// A directory of our own for sockets, removed with all that is in it.
class TemporaryDirectory
{
public:
    explicit TemporaryDirectory(TerminationGuard &guard);
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

    [[nodiscard]] const std::filesystem::path &path() const
    {
        return path_;
    }

private:
    std::filesystem::path path_;
};

} // namespace aaanc
