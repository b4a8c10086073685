// Writes a recording of what callbacks are delivered.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>

#include "delivery.hpp"

namespace aaanc
{

// Passes on what it is told. A callback is in the file before it is called, so
// that one that brings the process down is in it, too.
class TraceRecorder : public DeliveryObserver
{
public:
    // Makes the file, for its owner alone, since shared keys are in it; replaces
    // one that is there. Throws InputError where it cannot be made.
    TraceRecorder(const std::filesystem::path &file, DeliveryObserver &next);

    void callbackBegins(const Notification &notification) override;
    void changeTaken() override
    {
        next_.changeTaken();
    }
    void callbackEnded(const Notification &notification, int result) override;
    // Throws std::runtime_error when not all could be written.
    void finish();

private:
    void write(const std::string &text);

    struct Close {
        void operator()(std::FILE *file) const
        {
            std::fclose(file);
        }
    };
    std::filesystem::path path_;
    std::unique_ptr<std::FILE, Close> file_;
    DeliveryObserver &next_;
};

} // namespace aaanc
