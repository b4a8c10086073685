#include "termination.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "printable.hpp"

namespace aaanc
{

namespace
{

// Less than a second, which an end may take in all.
constexpr int kMillisecondsToEnd = 500;

Descriptor watchSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    // A blocked signal would come even where it is to be ignored.
    struct sigaction hang_up {
    };
    sigaction(SIGHUP, nullptr, &hang_up);
    if (hang_up.sa_handler != SIG_IGN) {
        sigaddset(&signals, SIGHUP);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return Descriptor(signalfd(-1, &signals, SFD_CLOEXEC));
}

void removeTree(const std::filesystem::path &path)
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

} // namespace

TerminationGuard::TerminationGuard()
    : signals_(watchSignals()), ending_(eventfd(0, EFD_CLOEXEC)), thread_([this] { watch(); })
{
    // An output that is closed early (by head, say) is no reason to leave files behind.
    std::signal(SIGPIPE, SIG_IGN);
}

TerminationGuard::~TerminationGuard()
{
    eventfd_write(ending_.number(), 1);
    thread_.join();
}

void TerminationGuard::removeAtEnd(const std::function<Removal()> &make)
{
    const std::lock_guard lock(mutex_);
    removals_.push_back(make());
}

void TerminationGuard::endBy(std::function<void()> end)
{
    const std::lock_guard lock(mutex_);
    end_ = std::move(end);
}

void TerminationGuard::watch()
{
    pollfd polled[] = {{signals_.number(), POLLIN, 0}, {ending_.number(), POLLIN, 0}};
    while (poll(polled, 2, -1) < 0 && errno == EINTR) {
    }
    signalfd_siginfo signal{};
    if (polled[0].revents == 0 ||
        read(signals_.number(), &signal, sizeof signal) != sizeof signal) {
        return;
    }
    std::unique_lock lock(mutex_);
    status_ = 128 + static_cast<int>(signal.ssi_signo);
    if (end_) {
        end_();
        lock.unlock();
        if (poll(&polled[1], 1, kMillisecondsToEnd) > 0) {
            return;
        }
        lock.lock();
    }
    for (const Removal &remove : removals_) {
        remove();
    }
    _exit(status_);
}

TemporaryDirectory::TemporaryDirectory(TerminationGuard &guard)
{
    guard.removeAtEnd([this] {
        const char *parent = std::getenv("TMPDIR");
        parent = parent != nullptr && *parent != '\0' ? parent : "/tmp";
        std::string name = std::filesystem::path(parent) / "aaanc-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error(
                fmt::format("{}: no temporary directory can be made there (TMPDIR): {}",
                            printable(parent), std::strerror(errno)));
        }
        path_ = name;
        return [path = path_] { removeTree(path); };
    });
}

TemporaryDirectory::~TemporaryDirectory()
{
    removeTree(path_);
}

} // namespace aaanc
