#include "services.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <span>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
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

using Block = std::span<const std::byte>;

constexpr const char *kReports = "tsan"; // files that ThreadSanitizer adds a process id to

std::string hexOf(Block block)
{
    return hexText(block, [](std::size_t) { return false; });
}

bool fieldIsClean(const FieldLayout &field, Block payload)
{
    const Block bytes = payload.subspan(field.offset, field.size);
    const auto is_zero = [](std::byte byte) { return byte == std::byte{0}; };
    // What stands behind a terminator may be the rest of an earlier, longer text.
    return field.kind == FieldKind::Number ||
           (field.kind == FieldKind::Text ? std::ranges::any_of(bytes, is_zero)
                                          : std::ranges::all_of(bytes, is_zero));
}

// Whether all of a request says what it is about.
bool isClean(Block block)
{
    const auto decoded = decodeRequest(block);
    if (!decoded || decoded->length == 0) {
        return decoded && isWithoutMeaning(*decoded);
    }
    const auto is_clean = [&](const FieldLayout &field) {
        return fieldIsClean(field, block.subspan(kHeaderSize));
    };
    return decoded->fits && std::ranges::all_of(decoded->layout->fields, is_clean);
}

Bytes bytesOf(const std::string &hex)
{
    std::string text(hex.size() / 2, '\0');
    if (!decodeHex(hex, text)) {
        throw std::runtime_error("aaanc service wrote no hexadecimal text");
    }
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
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

void Served::add(std::span<const std::byte> block, bool accepted)
{
    if (accepted && isClean(block)) {
        ++blocks[hexOf(block)];
    } else {
        odd.push_back(hexOf(block));
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
    handler_ = RequestHandler();
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
    const Parameter answer = handler_.answer(request);
    served_.add(request.parameter.data, answer.data == makeReply(0).data);
    return random_.percent(15) ? random_.oneOf(kOddReplies) : answer;
}

ServiceAlone::ServiceAlone(std::string program, std::string path, std::filesystem::path directory)
    : program_(std::move(program)), path_(std::move(path)), directory_(std::move(directory))
{
    // A process that is killed has no exit status to tell of a race by.
    const char *others = std::getenv("TSAN_OPTIONS");
    const std::string reports = directory_ / kReports;
    setenv("TSAN_OPTIONS",
           fmt::format("{}:log_path={}", others != nullptr ? others : "", reports).c_str(), 1);
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
    std::string words[] = {program_, "service", "--socket",   path_,
                           "--json", "--hex",   "--show-keys"};
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
        posix_spawn(&process_, program_.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        process_ = -1;
        throw std::runtime_error(fmt::format("{}: {}", program_, std::strerror(error)));
    }
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!connectTo(path_, kPatience)) {
        if (waitpid(process_, nullptr, WNOHANG) != 0 || std::chrono::steady_clock::now() > end) {
            throw std::runtime_error("aaanc service does not listen");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

int ServiceAlone::endBy(int signal)
{
    int status = 0;
    ::kill(process_, signal);
    waitpid(std::exchange(process_, -1), &status, 0);
    return status;
}

void ServiceAlone::kill()
{
    if (process_ > 0) {
        const int status = endBy(SIGKILL);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
            << "aaanc service ended by itself, with status " << status;
    }
}

void ServiceAlone::end()
{
    ASSERT_GT(process_, 0);
    const int status = endBy(SIGTERM);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 128 + SIGTERM)
        << "aaanc service ended with status " << status;
    for (const auto &file : std::filesystem::directory_iterator(directory_)) {
        if (file.path().stem() == kReports) {
            ADD_FAILURE() << std::ifstream(file.path()).rdbuf();
        }
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
            if (record.at("record") == "request") {
                served.add(bytesOf(record.at("hex")), record.at("answer").at("result") == 0);
            }
        }
    }
    return served;
}

} // namespace aaanc::test
