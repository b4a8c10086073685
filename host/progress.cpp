#include "progress.hpp"

#include <algorithm>
#include <cstdio>
#include <string>

#include <fmt/format.h>

#include "terminal.hpp"

namespace aaanc
{

namespace
{

constexpr std::chrono::milliseconds kLong(500);
constexpr std::chrono::milliseconds kBetweenDrawings(100);

} // namespace

Progress::Progress(bool wanted) : wanted_(wanted && isTerminal(stderr)) {}

Progress::~Progress()
{
    end();
}

void Progress::begin(std::size_t total)
{
    end();
    done_ = 0;
    total_ = total;
    due_ = Clock::now() + kLong;
}

void Progress::advance()
{
    ++done_;
    if (wanted_ && Clock::now() >= due_) {
        draw();
        due_ = Clock::now() + kBetweenDrawings;
    }
}

void Progress::makeRoom()
{
    if (shown_ && isTerminal(stdout)) {
        end();
    }
}

void Progress::end()
{
    if (shown_) {
        std::fputs("\r\033[K", stderr);
        std::fflush(stderr);
        shown_ = false;
    }
}

void Progress::draw()
{
    const std::size_t done = std::min(done_, total_);
    const std::string numbers = fmt::format(" {} of {} changes", done, total_);
    const std::size_t width = widthOf(stderr);
    const std::size_t room = width > numbers.size() + 3 ? width - numbers.size() - 3 : 0;
    const std::size_t length = std::min<std::size_t>(room, 40);
    const std::string filled(total_ != 0 ? length * done / total_ : 0, '#');
    std::fputs(fmt::format("\r[{:<{}}]{}\033[K", filled, length, numbers).c_str(), stderr);
    std::fflush(stderr);
    shown_ = true;
}

} // namespace aaanc
