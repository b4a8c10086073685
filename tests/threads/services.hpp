// AAA services that can be killed and started again, and tell what they were
// asked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include <sys/types.h>

#include "aaa_service.hpp"
#include "model/random.hpp"

namespace aaanc::test
{

// What a service has been asked in all its lives. Read when it is dead.
struct Served {
    std::map<std::string, std::size_t> blocks; // accepted, in hexadecimal; how often
    std::vector<std::string> odd;              // what was not accepted, or does not decode cleanly

    void add(std::span<const std::byte> block, bool accepted);
};

class Service
{
public:
    virtual ~Service() = default;
    // Returns when it listens.
    virtual void start() = 0;
    // Whatever it is doing.
    virtual void kill() = 0;
    // In an orderly way. A test fails where there was something wrong in any life.
    virtual void end() = 0;
    [[nodiscard]] virtual Served served() const = 0;
};

// On a thread of this process. It refuses requests and answers oddly at random.
class ServiceInProcess : public Service
{
public:
    ServiceInProcess(std::string path, std::uint64_t seed);
    ~ServiceInProcess() override;
    void start() override;
    void kill() override;
    void end() override
    {
        kill();
    }
    [[nodiscard]] Served served() const override
    {
        return served_;
    }

private:
    Parameter answer(const CmfRequest &request);

    std::string path_;
    model::Random random_;
    Served served_;
    RequestHandler handler_;
    std::unique_ptr<ServiceSocket> socket_;
    std::jthread thread_;
};

// A process that runs `program` as `aaanc service`, killed by SIGKILL. It leaves
// its records in `directory`, and what ThreadSanitizer has to say of it.
class ServiceAlone : public Service
{
public:
    ServiceAlone(std::string program, std::string path, std::filesystem::path directory);
    ~ServiceAlone() override;
    void start() override;
    void kill() override;
    void end() override;
    [[nodiscard]] Served served() const override;

private:
    [[nodiscard]] std::filesystem::path recordsOf(std::size_t life) const;
    // The status that the process ends with, as waitpid() gives it.
    int endBy(int signal);

    std::string program_;
    std::string path_;
    std::filesystem::path directory_;
    std::size_t lives_ = 0;
    pid_t process_ = -1;
};

} // namespace aaanc::test
