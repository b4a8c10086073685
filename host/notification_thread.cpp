#include "notification_thread.hpp"

#include <utility>

namespace aaanc
{

NotificationThread::NotificationThread() : thread_([this] { loop(); }) {}

NotificationThread::~NotificationThread()
{
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void NotificationThread::run(const std::function<void()> &job)
{
    std::unique_lock lock(mutex_);
    job_ = &job;
    changed_.notify_all();
    changed_.wait(lock, [this] { return job_ == nullptr; });
    if (failure_) {
        std::rethrow_exception(std::exchange(failure_, nullptr));
    }
}

void NotificationThread::loop()
{
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return ending_ || job_ != nullptr; });
        if (ending_) {
            return;
        }
        lock.unlock();
        try {
            (*job_)();
        } catch (...) {
            failure_ = std::current_exception();
        }
        lock.lock();
        job_ = nullptr;
        changed_.notify_all();
    }
}

} // namespace aaanc
