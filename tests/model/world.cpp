#include "world.hpp"

#include "../harness/device.hpp"
#include "bytes.hpp"
#include "text.hpp"

namespace aaanc::test::model
{
namespace
{

constexpr std::size_t kHeaderSize = 12;
constexpr std::size_t kReplyHeaderSize = 8;
constexpr std::size_t kHexOutputSize = 259;

// The code that a map holds for the n-th call.
std::optional<std::int32_t> planned(const std::map<std::size_t, std::int32_t> &codes,
                                    std::size_t call)
{
    const auto found = codes.find(call);
    return found == codes.end() ? std::nullopt : std::optional(found->second);
}

std::uint32_t widthMask(std::uint32_t type)
{
    static const std::map<std::uint32_t, std::uint32_t> narrow = {
        {9, 0xff}, {19, 0xff}, {20, 0xffff}};
    const auto found = narrow.find(type);
    return found == narrow.end() ? 0xffffffffU : found->second;
}

} // namespace

std::optional<std::string> Leaf::xpath() const
{
    return value_->xpath ? std::optional(cut(*value_->xpath, xpath_ends_at_)) : std::nullopt;
}

void Leaf::cutXpathAt(std::size_t position)
{
    xpath_ends_at_ = std::min(xpath_ends_at_, position);
}

std::optional<std::string> Leaf::textOrNull() const
{
    const auto *text = std::get_if<std::string>(&value_->data);
    return text ? std::optional(untilNul(*text)) : std::nullopt;
}

std::string Leaf::text() const
{
    return textOrNull().value_or("");
}

std::uint32_t Leaf::number() const
{
    const auto *number = std::get_if<std::uint32_t>(&value_->data);
    return number ? *number & widthMask(value_->type) : 0;
}

void World::call(std::string line)
{
    trace_.push_back(std::move(line));
    const auto change = scenario_.log_level_from_call.find(++calls_);
    if (change != scenario_.log_level_from_call.end())
        log_level_ = change->second;
}

void World::log(const char *severity, const std::string &function, const std::string &text)
{
    call(std::string("log ") + severity + ' ' + function + ' ' + quoted(text));
}

void World::debug(const std::string &function, const std::string &text)
{
    if (log_level_ >= 4)
        log("DBG", function, text);
}

void World::error(const std::string &function, const std::string &text)
{
    if (log_level_ != 0)
        log("ERR", function, text);
}

void World::errorWithReason(const std::string &function, const std::string &text, std::int32_t code)
{
    if (log_level_ == 0)
        return;
    const bool null = scenario_.strerror_null;
    call("strerror " + std::to_string(code) + (null ? " -> null" : ""));
    log("ERR", function, text + (null ? "(null)" : errorText(code)) + '.');
}

std::int32_t World::openIterator()
{
    call("changes-iter " + quoted(scenario_.xpath) + " -> " +
         std::to_string(scenario_.changes_iter));
    return scenario_.changes_iter;
}

std::int32_t World::next(const Change *&change)
{
    const std::size_t index = next_calls_++;
    const std::int32_t usual = index < scenario_.changes.size() ? 0 : scenario_.end_of_changes;
    const std::int32_t code = planned(scenario_.next_result, next_calls_).value_or(usual);
    if (code != 0) {
        call("next -> " + std::to_string(code));
        return code;
    }
    change = &scenario_.changes.at(index);
    call("next -> 0 oper " + std::to_string(change->oper));
    return 0;
}

void World::freeValue(const char *which, bool present)
{
    call(present ? std::string("free ") + which + '#' + std::to_string(next_calls_) : "free null");
}

void World::freeIterator()
{
    call("free-iter");
}

std::optional<std::string> World::nodeName(const std::string &xpath)
{
    std::optional<std::string> name;
    if (!scenario_.node_name_null.contains(++node_name_calls_)) {
        if (const auto offset = nodeNameOffset(xpath))
            name = xpath.substr(*offset);
    }
    call("node-name " + quoted(xpath) + " -> " + quoted(name));
    return name;
}

std::optional<std::string> World::key(Leaf &leaf, const std::string &list, const std::string &key)
{
    const std::string before = quoted(leaf.xpath());
    std::optional<std::string> value;
    if (!scenario_.key_null.contains(++key_calls_)) {
        if (const auto place = findKey(leaf.wholeXpath(), list, key)) {
            value = leaf.wholeXpath().substr(place->offset, place->length);
            if (scenario_.cuts_xpath)
                leaf.cutXpathAt(place->offset + place->length);
        }
    }
    call("key " + quoted(list) + ' ' + quoted(key) + " in " + before + " -> " + quoted(value));
    return value;
}

void World::boundedCopy(const std::string &source, std::size_t size)
{
    call("strlcpy " + quoted(source) + ' ' + std::to_string(size));
}

std::optional<std::string> World::unhex(const std::string &text)
{
    std::int32_t code = 0;
    auto bytes = test::unhex(text, kHexOutputSize);
    if (const auto failure = planned(scenario_.unhex_result, ++unhex_calls_)) {
        code = *failure;
        bytes = code == 0 ? std::optional<std::string>("") : std::nullopt;
    } else if (!bytes) {
        code = kUnhexRefused;
    }
    call("unhex " + quoted(text) + ' ' + std::to_string(kHexOutputSize) + " -> " +
         std::to_string(code));
    return bytes;
}

void World::set(Block &block, std::uint32_t type, std::uint32_t oper, const std::string &payload)
{
    block = {type, oper < 2 ? 1U : 0U, payload};
    const auto length = static_cast<std::uint32_t>(payload.size());
    debug("aaaNcParamSet", say("Set param: eMsgType=%d, bDoFlag=%d, length=%d.",
                               {shown(block.type), shown(block.do_flag), shown(length)}));
}

std::int32_t World::send(const Block &block)
{
    const auto planned_exchange = scenario_.exchanges.find(++requests_);
    const Exchange behaviour =
        planned_exchange == scenario_.exchanges.end() ? Exchange{} : planned_exchange->second;
    if (behaviour.null_context) {
        call("cmf-init \"aaa\" 145 1 -> null");
        error("aaaNcCmfSendProc", "Aaa nc cmf init client ctx failed, cmfContext=0.");
        return 1;
    }
    call("cmf-init \"aaa\" 145 1 -> ok");
    const std::int32_t result = exchange(block, behaviour);
    call("cmf-close");
    return result;
}

std::int32_t World::request(std::uint32_t type, std::uint32_t oper, const std::string &payload)
{
    Block block;
    set(block, type, oper, payload);
    return send(block);
}

// One CMF call that answers `code`; a failure is logged, with the code behind it.
std::int32_t World::step(const std::string &call_text, std::int32_t code,
                         const std::string &failure)
{
    call(call_text + " -> " + std::to_string(code));
    if (code != 0)
        error("aaaNcCmfSendProc", failure + std::to_string(code) + '.');
    return code;
}

std::int32_t World::exchange(const Block &block, const Exchange &behaviour)
{
    const std::size_t length = block.payload.size();
    const std::string bytes = Bytes(kHeaderSize)
                                  .word(0, block.type)
                                  .word(4, block.do_flag)
                                  .word(8, static_cast<std::uint32_t>(length))
                                  .str() +
                              block.payload;

    std::int32_t code =
        step("cmf-object " + std::to_string(block.type) + (block.do_flag != 0 ? " 3" : " 4") + " 0",
             behaviour.object_set, "Aaa nc cmf set client ctx obj failed, ret=");
    if (code == 0)
        code = step(
            "cmf-encode 0 " + std::to_string(bytes.size()) + ' ' + hex(bytes), behaviour.encode,
            "Cmf client encode param failed, msgLength=" + std::to_string(length) + " + 12, ret=");
    if (code == 0 && behaviour.send == 5) {
        call("cmf-send -> 5");
        error("aaaNcCmfSendProc",
              "Cannot execute the command, because system memory is low, ret=5.\n");
        return 5;
    }
    if (code == 0)
        code = step("cmf-send", behaviour.send, "Cmf client send req failed, ret=");
    if (code == 0)
        code = step("cmf-receive", behaviour.receive, "Cmf client resp failed, ret=");
    if (code == 0)
        code = step("cmf-decode", behaviour.decode, "Cmf recv decode param failed, ret=");
    return code == 0 ? answer(behaviour.reply) : code;
}

// What arrives of the reply counts: bytes that did not are zero.
std::int32_t World::answer(const Reply &reply)
{
    const std::size_t arrived = reply.null_data ? 0 : reply.decoded_length;
    std::string head =
        Bytes(kReplyHeaderSize).word(0, reply.result).word(4, reply.length_field).str();
    for (std::size_t at = arrived; at < head.size(); ++at)
        head[at] = '\0';

    if (reply.decoded_length != wordAt(head, 4) + 8U) {
        error("aaaNcCmfSendProc", say("Cmf data len is not the same,respParamLen=<%d>.",
                                      {shown(reply.decoded_length)}));
        return 0;
    }
    return static_cast<std::int32_t>(wordAt(head, 0));
}

Expectation World::finish(std::int32_t result)
{
    trace_.push_back("result " + std::to_string(result));
    return {std::move(trace_), std::move(facts_)};
}

} // namespace aaanc::test::model
