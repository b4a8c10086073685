#include "services.hpp"

#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <span>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "hex.hpp"
#include "messages.hpp"
#include "running_state.hpp"

namespace aaanc::test
{

namespace
{

std::string hexOf(const CmfRequest &request)
{
    return hexText(request.parameter.data, [](std::size_t) { return false; });
}

// A reply of these words, said to be `length` bytes long.
Parameter reply(std::uint32_t length, std::vector<std::uint32_t> words)
{
    const auto bytes = std::as_bytes(std::span(words));
    return {0, length, {bytes.begin(), bytes.end()}};
}

// Codes that handlers tell from the others, others, and replies of a wrong length.
std::vector<Parameter> oddReplies()
{
    return {makeReply(1), makeReply(43), makeReply(49),        makeReply(52),
            makeReply(7), reply(8, {}),  reply(4, {43}),       reply(8, {43, 4}),
            reply(0, {}), reply(9, {0}), reply(12, {43, 4, 0})};
}

} // namespace

void Served::add(const CmfRequest &request)
{
    const auto decoded = decodeRequest(request.parameter.data);
    RequestHandler judge;
    const bool clean = decoded && (decoded->problems.empty() || isWithoutMeaning(*decoded));
    if (clean && judge.answer(request).data == makeReply(0).data) {
        ++blocks[hexOf(request)];
    } else {
        odd.push_back(hexOf(request));
    }
}

ServiceInProcess::ServiceInProcess(std::string path, std::uint64_t seed)
    : path_(std::move(path)), random_(seed, 0)
{
}

ServiceInProcess::~ServiceInProcess()
{
    kill();
}

void ServiceInProcess::start()
{
    handler_ = {};
    socket_ = std::make_unique<ServiceSocket>(
        path_, [this](const CmfRequest &request) { return answer(request); });
    thread_ = std::jthread([this] { socket_->serve(); });
}

void ServiceInProcess::kill()
{
    if (socket_) {
        socket_->stop();
        thread_.join();
        socket_.reset();
    }
}

Parameter ServiceInProcess::answer(const CmfRequest &request)
{
    static const std::vector<Parameter> kOddReplies = oddReplies();
    served_.add(request);
    const Parameter answer = handler_.answer(request);
    return random_.percent(15) ? random_.oneOf(kOddReplies) : answer;
}

ServiceAlone::ServiceAlone(std::string path, std::filesystem::path directory)
    : path_(std::move(path)), directory_(std::move(directory))
{
}

ServiceAlone::~ServiceAlone()
{
    kill();
}

std::filesystem::path ServiceAlone::recordsOf(std::size_t life) const
{
    return directory_ / fmt::format("service-{}.json", life);
}

void ServiceAlone::start()
{
    constexpr auto kPatience = std::chrono::seconds(60);
    std::string words[] = {AAANC_EXECUTABLE, "service", "--socket",   path_,
                           "--json",         "--hex",   "--show-keys"};
    std::vector<char *> arguments;
    for (std::string &word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, recordsOf(++lives_).c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int error =
        posix_spawn(&process_, words[0].c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        process_ = -1;
        throw std::runtime_error(fmt::format("{}: {}", words[0], std::strerror(error)));
    }
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!connectTo(path_, kPatience)) {
        if (waitpid(process_, nullptr, WNOHANG) != 0 || std::chrono::steady_clock::now() > end) {
            throw std::runtime_error("aaanc service does not listen");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void ServiceAlone::kill()
{
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        process_ = -1;
    }
}

Served ServiceAlone::served() const
{
    Served served;
    for (std::size_t life = 1; life <= lives_; ++life) {
        std::ifstream records(recordsOf(life));
        for (std::string line; std::getline(records, line);) {
            if (records.eof()) {
                break; // the record that it was killed at
            }
            const auto record = nlohmann::json::parse(line);
            if (record.at("record") != "request") {
                continue;
            }
            const bool clean = record.contains("problems") &&
                               (record.at("problems").empty() || record.at("without_meaning"));
            if (clean && record.at("answer").at("result") == 0) {
                ++served.blocks[record.at("hex")];
            } else {
                served.odd.push_back(line);
            }
        }
    }
    return served;
}

} // namespace aaanc::test
