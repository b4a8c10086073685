// The thread that callbacks run on.
#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace aaanc
{

class NotificationThread
{
public:
    NotificationThread();
    ~NotificationThread();
    NotificationThread(const NotificationThread &) = delete;
    NotificationThread &operator=(const NotificationThread &) = delete;

    // Runs `job` on the thread and waits for its end. An exception of the job
    // is thrown here. Jobs come from one thread at a time.
    void run(const std::function<void()> &job);

private:
    void loop();

    std::mutex mutex_;
    std::condition_variable changed_;
    const std::function<void()> *job_ = nullptr; // under way or to be begun
    std::exception_ptr failure_;
    bool ending_ = false;
    std::thread thread_; // started last
};

} // namespace aaanc
