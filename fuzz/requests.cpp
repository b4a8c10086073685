#include "requests.hpp"

#include "harness/payload.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <sstream>
#include <string_view>

namespace aaanc::test::fuzz
{

namespace
{

using Texts = std::vector<std::string>;

constexpr std::array<std::string_view, 5> kSteps = {"cmf-object", "cmf-encode", "cmf-send",
                                                    "cmf-receive", "cmf-decode"};
constexpr std::uint32_t kSourceInterface = 19;

const std::map<std::string_view, std::vector<std::uint32_t>> kTypesOf = {
    {"aaaNcGlobalConfChanges", {5, 21}},       {"aaaNcSrcInterfaceConfChanges", {19}},
    {"aaaNcServerGroupConfChanges", {22, 29}}, {"aaaNcServerGroupVrfConfChanges", {24, 31}},
    {"aaaNcDomainConfChanges", {0}},           {"aaaNcRadiusIpv4ConfChanges", {63}},
    {"aaaNcRadiusIpv6ConfChanges", {63}},      {"aaaNctacacsIpv4ConfChanges", {30}},
    {"aaaNctacacsIpv6ConfChanges", {30}},      {"aaaNcDomainAuthenConfChanges", {1}},
    {"aaaNcDomainAccountConfChanges", {1}}};

// The numbers that are not the user's, and what they can be.
const std::map<std::string_view, std::vector<std::uint32_t>> kNumbers = {
    {"bSecondConfirm", {0, 1}},
    {"methodKind", {0, 2}},
    {"type", {0, 2, 5, 6}},
    {"accountStage", {0, 1, 2, 3}},
    {"groups[0].groupType", {0, 1, 2, 3}},
    {"groups[1].groupType", {0, 1, 2, 3}},
    {"groups[2].groupType", {0, 1, 2, 3}},
    {"groups[3].groupType", {0, 1, 2, 3}},
    {"family", {0, 2, 10}},
    {"keyType", {0, 1}},
    {"setFlag", {0, 0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0x70}}};

template <typename T> bool isOneOf(const std::vector<T> &values, const T &value)
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

bool startsWith(std::string_view line, std::string_view start)
{
    return line.substr(0, start.size()) == start;
}

std::string firstWord(const std::string &line)
{
    return line.substr(0, line.find(' '));
}

// The result of a call, as its line ends.
std::string resultOf(const std::string &line)
{
    const std::size_t arrow = line.rfind(" -> ");
    return arrow == std::string::npos ? "" : line.substr(arrow + 4);
}

std::string bytesOf(const std::string &hex)
{
    std::string bytes;
    for (std::size_t at = 0; at + 1 < hex.size(); at += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16));
    return bytes;
}

class Checker
{
public:
    Checker(const Scenario &scenario, const Trace &trace) : scenario_(scenario), trace_(trace) {}

    Texts run()
    {
        for (const std::string &line : trace_)
            checkLine(line);
        require(!context_open_, "a context is never closed");
        require(!trace_.empty() && startsWith(trace_.back(), "result "), "no result at the end");
        return std::move(broken_);
    }

private:
    void require(bool holds, const std::string &otherwise)
    {
        if (!holds)
            broken_.push_back(otherwise);
    }

    void checkLine(const std::string &line)
    {
        const std::string word = firstWord(line);
        if (startsWith(word, "cmf-"))
            checkCmf(word, line);
        else if (word == "log" || word == "strerror")
            checkLevel(line);
    }

    void checkLevel(const std::string &line)
    {
        if (!scenario_.log_level_from_call.empty())
            return;
        const bool is_debug = startsWith(line, "log DBG ");
        require(is_debug ? scenario_.log_level >= 4 : scenario_.log_level != 0,
                "at level " + std::to_string(scenario_.log_level) + ": " + line);
    }

    void checkCmf(const std::string &word, const std::string &line)
    {
        if (word == "cmf-init") {
            require(!context_open_, "a context is opened in another");
            context_open_ = resultOf(line) == "ok";
            step_ = 0;
            step_failed_ = false;
            return;
        }
        require(context_open_, "without a context: " + line);
        if (word == "cmf-close") {
            require(step_failed_ || step_ == kSteps.size(), "closed before its last step");
            context_open_ = false;
            return;
        }
        require(!step_failed_ && step_ < kSteps.size() && word == kSteps[step_],
                "out of order: " + line);
        ++step_;
        step_failed_ = resultOf(line) != "0";
        if (word == "cmf-object")
            object_ = line.substr(word.size() + 1, line.rfind(" -> ") - word.size() - 1);
        if (word == "cmf-encode")
            checkRequest(line);
    }

    void checkRequest(const std::string &line)
    {
        std::istringstream words(line);
        std::string word;
        std::string kind;
        std::size_t length = 0;
        std::string hex;
        words >> word >> kind >> length >> hex;
        const std::string block = bytesOf(hex);
        require(kind == "0", "a parameter of kind " + kind);
        if (block.size() < kHeaderSize) {
            require(false, "a request without a header");
            return;
        }
        const RequestHeader header = readHeader(block);
        require(header.do_flag <= 1, "bDoFlag is " + std::to_string(header.do_flag));
        require(object_ ==
                    std::to_string(header.message_type) + (header.do_flag != 0 ? " 3 0" : " 4 0"),
                "the object record is " + object_);
        require(length == kHeaderSize + header.length && length == block.size(),
                "the parameter's length does not fit the header's");
        checkPayload(header, std::string_view(block).substr(kHeaderSize));
    }

    // A group of no known protocol is sent as a block that nothing was set in.
    bool isUnsetBlock(const RequestHeader &header) const
    {
        return scenario_.callback == "aaaNcServerGroupConfChanges" && header.message_type == 0 &&
               header.do_flag == 0 && header.length == 0;
    }

    void checkPayload(const RequestHeader &header, std::string_view payload)
    {
        if (isUnsetBlock(header))
            return;
        const auto types = kTypesOf.find(scenario_.callback);
        const PayloadRecord *record = payloadRecord(header.message_type);
        if (record == nullptr || types == kTypesOf.end() ||
            !isOneOf(types->second, header.message_type)) {
            require(false,
                    "type " + std::to_string(header.message_type) + " from " + scenario_.callback);
            return;
        }
        if (payload.size() != record->size) {
            require(false, "type " + std::to_string(header.message_type) + " with " +
                               std::to_string(payload.size()) + " bytes");
            return;
        }
        std::string rest(payload);
        for (const Field &field : record->fields) {
            checkField(*record, field, payload.substr(field.offset, field.size));
            rest.replace(field.offset, field.size, field.size, '\0');
        }
        require(rest.find_first_not_of('\0') == std::string::npos, "a reserved byte is not zero");
    }

    void checkField(const PayloadRecord &record, const Field &field, std::string_view bytes)
    {
        if (field.kind == FieldKind::Number) {
            const auto known = kNumbers.find(field.name);
            const std::uint32_t number = getNumber(bytes, 0, field.size);
            require(known == kNumbers.end() || isOneOf(known->second, number),
                    std::string(field.name) + " is " + std::to_string(number));
            return;
        }
        const std::size_t end = bytes.find('\0');
        require(end != std::string_view::npos, std::string(field.name) + " is not terminated");
        // There a shorter text may stand over a longer one.
        if (end == std::string_view::npos || record.message_type == kSourceInterface)
            return;
        require(bytes.find_first_not_of('\0', end) == std::string_view::npos,
                std::string(field.name) + " has something behind its end");
    }

    const Scenario &scenario_;
    const Trace &trace_;
    Texts broken_;

    bool context_open_ = false;
    std::size_t step_ = 0; // of kSteps, the next one
    bool step_failed_ = false;
    std::string object_;
};

} // namespace

std::vector<std::string> brokenRequests(const Scenario &scenario, const Trace &trace)
{
    return Checker(scenario, trace).run();
}

} // namespace aaanc::test::fuzz
