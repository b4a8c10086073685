// Writes a recording of what callbacks are delivered.
#pragma once

#include <filesystem>
#include <string>

#include "delivery.hpp"
#include "whole_file.hpp"

namespace aaanc
{

// Passes on what it is told. A callback is written before it is called, so that one
// that brings the process down is in what is left then: a file with the recording's
// name and six more characters.
class TraceRecorder : public DeliveryObserver
{
public:
    // The file is for its owner alone, since shared keys are in it. Throws InputError
    // where it cannot be made.
    TraceRecorder(const std::filesystem::path &file, TerminationGuard &guard,
                  DeliveryObserver &next);

    void callbackBegins(const Notification &notification) override;
    void changeTaken() override
    {
        next_.changeTaken();
    }
    void callbackEnded(const Notification &notification, int result) override;
    // Puts the file in its place; without that, there will be none. Throws
    // std::runtime_error when not all could be written.
    void finish()
    {
        file_.putInPlace();
    }

private:
    void write(const std::string &text);

    WholeFile file_;
    DeliveryObserver &next_;
};

} // namespace aaanc
