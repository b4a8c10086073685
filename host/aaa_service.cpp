#include "aaa_service.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "printable.hpp"

namespace aaanc
{

namespace
{

constexpr int kBacklog = 64;

[[noreturn]] void failWith(const std::string &path, const std::string &reason)
{
    throw std::runtime_error(fmt::format("{}: {}", printable(path), reason));
}

// Removes a socket that nobody listens on any more.
void removeStale(const std::string &path)
{
    const auto type = std::filesystem::symlink_status(path).type();
    if (type == std::filesystem::file_type::not_found) {
        return;
    }
    if (type != std::filesystem::file_type::socket) {
        failWith(path, "is there and no socket");
    }
    if (connectTo(path, std::chrono::milliseconds(200))) {
        failWith(path, "a service is listening there already");
    }
    if (errno != ECONNREFUSED) { // whoever listens is of another kind, or busy
        failWith(path, std::string("a socket is there already: ") + std::strerror(errno));
    }
    unlink(path.c_str());
}

Descriptor listenAt(const std::string &path)
{
    checkSocketPath(path);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, path.size());
    removeStale(path);
    Descriptor listening(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const mode_t mask = umask(0177); // no moment with more rights than 0600
    const int bound =
        bind(listening.number(), reinterpret_cast<const sockaddr *>(&address), sizeof address);
    const int error = errno;
    umask(mask);
    if (bound != 0) {
        failWith(path, std::strerror(error));
    }
    if (listen(listening.number(), kBacklog) != 0) {
        failWith(path, std::strerror(errno));
    }
    return listening;
}

// The socket that has just been bound.
SocketFile fileAt(const std::string &path)
{
    struct stat status {
    };
    if (lstat(path.c_str(), &status) != 0) {
        failWith(path, std::strerror(errno));
    }
    return {path, status.st_dev, status.st_ino};
}

Descriptor makeEvent()
{
    Descriptor event(eventfd(0, EFD_CLOEXEC));
    if (!event) {
        throw std::runtime_error(fmt::format("eventfd: {}", std::strerror(errno)));
    }
    return event;
}

using Clock = std::chrono::steady_clock;

// A connection, and the answer that it waits for.
struct Connection {
    Descriptor socket;
    Bytes packet; // empty for none
    Clock::time_point due;
};

} // namespace

Parameter makeReply(std::uint32_t result)
{
    const std::uint32_t words[] = {result, 0};
    const auto bytes = std::as_bytes(std::span(words));
    return {0, sizeof words, {bytes.begin(), bytes.end()}};
}

Parameter RequestHandler::answer(const CmfRequest &request)
{
    ++count_;
    return makeReply(judge(request));
}

std::string malformationOf(const CmfRequest &request, const std::optional<Request> &decoded)
{
    const std::size_t size = request.parameter.data.size();
    if (!decoded) {
        return fmt::format("{} bytes, fewer than the {} of a header", size, kHeaderSize);
    }
    const ObjectRecord &object = request.object;
    const std::vector<std::string> problems =
        objectProblems(*decoded, object.type, object.operation);
    if (!problems.empty()) {
        return problems.front();
    }
    if (object.zero != 0) {
        return fmt::format("the last word of the object record is {}, not 0", object.zero);
    }
    if (decoded->fits || isWithoutMeaning(*decoded)) {
        return {};
    }
    return decoded->layout == nullptr
               ? fmt::format("no message is of type {}", decoded->type)
               : fmt::format("length {} and {} bytes of payload; type {} has {}", decoded->length,
                             size - kHeaderSize, decoded->type, decoded->layout->length);
}

std::uint32_t RequestHandler::judge(const CmfRequest &request)
{
    const std::optional<Request> decoded = decodeRequest(request.parameter.data);
    if (!malformationOf(request, decoded).empty()) {
        return kServiceMalformed;
    }
    state_.accept(*decoded, count_);
    return 0;
}

const Misbehaviour *RequestHandler::ruleFor(std::size_t number, std::uint32_t type) const
{
    const auto fits = [=](const Misbehaviour &rule) {
        return rule.request.value_or(number) == number && rule.type.value_or(type) == type;
    };
    const auto found = std::ranges::find_if(rules_, fits);
    return found != rules_.end() ? &*found : nullptr;
}

Treatment RequestHandler::treat(const CmfRequest &request)
{
    const Misbehaviour *rule = ruleFor(count_ + 1, request.object.type);
    Treatment treatment;
    if (rule == nullptr) {
        treatment = answer(request);
    } else {
        treatment.rule = rule->text;
        treatment.delay = rule->delay;
        treatment.closes = rule->manner == Manner::Close;
        if (isLookedAt(rule->manner)) {
            treatment.packet = packSpoilt(answer(request), rule->manner);
        } else {
            ++count_;
            treatment.packet =
                rule->manner == Manner::Refuse ? packReply(makeReply(rule->code)) : Bytes();
        }
    }
    treatment.leaves = isAway();
    return treatment;
}

const Misbehaviour *RequestHandler::closesNext()
{
    const auto found = std::ranges::find_if(rules_, [this](const Misbehaviour &rule) {
        return rule.manner == Manner::CloseBefore &&
               rule.request.value_or(count_ + 1) == count_ + 1;
    });
    if (found == rules_.end()) {
        return nullptr;
    }
    ++count_;
    return &*found;
}

bool RequestHandler::isAway() const
{
    return std::ranges::any_of(rules_, [this](const Misbehaviour &rule) {
        return rule.manner == Manner::Away && rule.request.value_or(1) <= count_ + 1;
    });
}

void SocketFile::remove() const
{
    struct stat status {
    };
    if (lstat(path.c_str(), &status) == 0 && status.st_dev == device && status.st_ino == inode) {
        unlink(path.c_str());
    }
}

ServiceSocket::ServiceSocket(const std::string &path, Answer answer, ClosesNext closes_next,
                             Malformed malformed)
    : answer_(std::move(answer)), closes_next_(std::move(closes_next)),
      malformed_(std::move(malformed)), stopping_(makeEvent()), listening_(listenAt(path)),
      file_(fileAt(path))
{
}

ServiceSocket::~ServiceSocket()
{
    leave();
}

// Serves what comes until the stop.
class ServiceSocket::Server
{
public:
    explicit Server(ServiceSocket &service) : service_(service) {}

    void run()
    {
        while (true) {
            std::vector<pollfd> polled = {{service_.stopping_.number(), POLLIN, 0},
                                          {service_.listening_.number(), POLLIN, 0}};
            for (const Connection &connection : open_) {
                polled.push_back({connection.socket.number(), POLLIN, 0});
            }
            if (poll(polled.data(), polled.size(), millisecondsToNextAnswer()) < 0 &&
                errno != EINTR) {
                return;
            }
            if (polled[0].revents != 0) {
                return;
            }
            for (std::size_t i = open_.size(); i-- > 0;) {
                if (!attend(open_[i], polled[kFixed + i].revents != 0)) {
                    open_.erase(open_.begin() + static_cast<std::ptrdiff_t>(i));
                }
            }
            if (polled[1].revents != 0) {
                take();
            }
        }
    }

private:
    static constexpr std::size_t kFixed = 2;

    // -1 when there is none to come, as poll() wants it.
    [[nodiscard]] int millisecondsToNextAnswer() const
    {
        std::optional<Clock::time_point> next;
        for (const Connection &connection : open_) {
            if (!connection.packet.empty()) {
                next = std::min(next.value_or(connection.due), connection.due);
            }
        }
        if (!next) {
            return -1;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now());
        return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
    }

    void take()
    {
        Descriptor socket(
            accept4(service_.listening_.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (socket && !service_.closes_next_()) {
            open_.push_back({std::move(socket), {}, {}});
        }
    }

    // False at the end of the connection.
    bool attend(Connection &connection, bool readable)
    {
        if (readable && !receive(connection)) {
            return false;
        }
        if (connection.packet.empty() || connection.due > Clock::now()) {
            return true;
        }
        return sendPacket(connection.socket, std::exchange(connection.packet, {}));
    }

    bool receive(Connection &connection)
    {
        const std::optional<Bytes> packet = receivePacket(connection.socket);
        if (!packet) {
            return false;
        }
        const std::optional<CmfRequest> request = unpackRequest(*packet);
        if (!request) {
            service_.malformed_(*packet);
        }
        Treatment treatment = request ? service_.answer_(*request) : makeReply(kServiceMalformed);
        if (treatment.leaves) {
            service_.leave();
        }
        connection.packet = std::move(treatment.packet);
        connection.due = Clock::now() + treatment.delay;
        return !treatment.closes;
    }

    ServiceSocket &service_;
    std::vector<Connection> open_;
};

void ServiceSocket::serve()
{
    Server(*this).run();
}

void ServiceSocket::stop()
{
    eventfd_write(stopping_.number(), 1);
}

void ServiceSocket::leave()
{
    if (listening_) {
        file_.remove();
        listening_ = Descriptor();
    }
}

} // namespace aaanc
