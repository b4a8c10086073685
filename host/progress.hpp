// A bar that tells a person how far a long push has come.
#pragma once

#include <chrono>
#include <cstddef>

namespace aaanc
{

// On standard error, where that is a terminal; else nothing is written. The bar
// comes when a push has taken half a second, and goes with it.
class Progress
{
public:
    // Without a bar unless `wanted`.
    explicit Progress(bool wanted);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    // A push of so many changes begins.
    void begin(std::size_t total);
    // Another change has been taken.
    void advance();
    // The bar goes.
    void end();
    // Takes the bar away if standard output, which is to be written to, is a terminal, too.
    void makeRoom();

private:
    using Clock = std::chrono::steady_clock;

    void draw();

    bool wanted_;
    bool shown_ = false;
    std::size_t done_ = 0;
    std::size_t total_ = 0;
    Clock::time_point due_; // the next drawing
};

} // namespace aaanc
