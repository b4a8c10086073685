// The AAA service as a process of its own.
#pragma once

#include <chrono>
#include <csignal>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cmf_wire.hpp"
#include "process.hpp"

namespace aaanc::test
{

// Listens at aaa.sock in `directory`, until it is told to end.
class Alone
{
public:
    explicit Alone(const std::string &directory, std::vector<std::string> options = {})
        : process_(directory, arguments(std::move(options)))
    {
        EXPECT_TRUE(eventually([&] {
            return connectTo(directory + "/aaa.sock", std::chrono::seconds(1)).has_value();
        }));
    }
    void send(int signal)
    {
        kill(process_.id(), signal);
    }
    Outcome end(int signal)
    {
        send(signal);
        return process_.wait();
    }

private:
    static std::vector<std::string> arguments(std::vector<std::string> options)
    {
        options.insert(options.begin(), {"service", "--socket", "aaa.sock"});
        return options;
    }

    Process process_;
};

} // namespace aaanc::test
