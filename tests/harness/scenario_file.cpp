#include "scenario_file.hpp"

#include "fake_platform.hpp"
#include "payload.hpp"
#include "trace_text.hpp"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <limits>
#include <set>
#include <string_view>

namespace aaanc::test
{

namespace
{

// Stands for a null pointer where a text may stand.
constexpr std::string_view kNull = "\\N";

constexpr const char *kNoLogAlone = "'no log' stands beside no log line";

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isNameCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) || c == '_';
}

// The words of a line, taken one after another.
class Words
{
public:
    explicit Words(std::string_view text) : rest_(text) {}

    // The next word; empty at the end.
    std::string_view next()
    {
        const std::size_t end = rest_.find(' ');
        const std::string_view word = rest_.substr(0, end);
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
        return word;
    }

    // Everything behind the words taken.
    std::string_view rest() const
    {
        return rest_;
    }

    // Takes the next word when it is this one.
    bool take(std::string_view word)
    {
        Words ahead = *this;
        if (rest_.empty() || ahead.next() != word)
            return false;
        *this = ahead;
        return true;
    }

private:
    std::string_view rest_;
};

class Reader
{
public:
    explicit Reader(std::string path) : path_(std::move(path)) {}

    std::vector<ScenarioCase> read();

private:
    [[noreturn]] void fail(const std::string &what) const
    {
        failAt(line_, what);
    }
    [[noreturn]] void failAt(std::size_t line, const std::string &what) const
    {
        throw ScenarioError(path_ + ':' + std::to_string(line) + ": " + what);
    }

    std::string expand(std::string_view line);
    std::string unescape(std::string_view text) const;
    template <typename T> T number(std::string_view text) const;
    std::size_t ordinal(std::string_view text) const;
    void end(const Words &words) const;

    std::optional<Value> value(std::string_view text) const;
    Data data(std::uint32_t type, std::string_view text) const;
    std::vector<std::string_view> splitAtBars(std::string_view text) const;

    void readLine(std::string_view line);
    void readIndented(std::string_view line);
    void define(std::string_view text);
    void startBlock(std::string_view name);
    void useBlock(std::string_view name);
    bool readChange(std::string_view word, Words words);
    bool readPlatform(std::string_view word, Words words);
    bool readExpectation(std::string_view word, Words words);
    void readExchange(Words words);
    void readLogLine(std::string_view word, Words words);
    void readRequest(Words words);
    void readField(std::string_view line);
    void openCase(std::string_view line);
    void closeCase();
    void storePreamble();
    void checkAllIsUsed() const;

    std::string path_;
    std::size_t line_ = 0;
    std::vector<ScenarioCase> cases_;
    ScenarioCase preamble_;
    ScenarioCase current_;
    bool in_case_ = false;
    bool preamble_plays_callback_ = false;
    bool callback_given_ = false;
    bool result_given_ = false;
    std::set<std::string, std::less<>> fields_given_; // of the last request
    // What an indented line belongs to.
    enum class Block { None, Stored, Request, Calls } block_ = Block::None;
    struct StoredLine {
        std::size_t number;
        std::string text;
    };
    struct StoredBlock {
        std::size_t line; // where it is stored
        std::vector<StoredLine> lines;
    };
    std::map<std::string, StoredBlock, std::less<>> blocks_;
    StoredBlock *stored_ = nullptr; // the block being stored
    bool using_block_ = false;
    struct Name {
        std::size_t line; // where it is defined
        std::string text;
    };
    std::map<std::string, Name, std::less<>> names_;
    std::map<std::string, Name, std::less<>> preamble_names_;
    // The blocks and names of the file by line, and the lines of those used.
    std::map<std::size_t, std::string> definitions_;
    std::set<std::size_t> used_;
};

std::vector<ScenarioCase> Reader::read()
{
    std::ifstream file(path_);
    if (!file)
        fail("cannot be read");
    std::string line;
    while (std::getline(file, line)) {
        ++line_;
        line.erase(line.find_last_not_of(" \t\r") + 1);
        if (line.empty() || line[0] == '#')
            continue;
        if (block_ == Block::Stored && line[0] == ' ')
            stored_->lines.push_back({line_, line.substr(std::min<std::size_t>(2, line.size()))});
        else
            readLine(expand(line));
    }
    closeCase();
    if (cases_.empty())
        fail("holds no case");
    checkAllIsUsed();
    return std::move(cases_);
}

// What is never used may be misspelt where it should be, and the lines of an
// unused block are never read.
void Reader::checkAllIsUsed() const
{
    for (const auto &[line, what] : definitions_)
        if (used_.count(line) == 0)
            failAt(line, what + " is never used");
}

// $NAME is what `let` gave it; $(TEXT*N) is TEXT, N times.
std::string Reader::expand(std::string_view line)
{
    std::string expanded;
    for (std::size_t at = 0; at < line.size();) {
        if (line[at] != '$') {
            expanded += line[at++];
            continue;
        }
        if (startsWith(line.substr(at), "$(")) {
            const std::size_t close = line.find(')', at);
            const std::string_view inside =
                close == std::string_view::npos ? "" : line.substr(at + 2, close - at - 2);
            const std::size_t star = inside.rfind('*');
            if (star == std::string_view::npos || star == 0)
                fail("a repetition is $(TEXT*N)");
            for (std::size_t left = ordinal(inside.substr(star + 1)); left > 0; --left)
                expanded += inside.substr(0, star);
            at = close + 1;
            continue;
        }
        std::size_t stop = at + 1;
        while (stop < line.size() && isNameCharacter(line[stop]))
            ++stop;
        const std::string_view name = line.substr(at + 1, stop - at - 1);
        const auto known = names_.find(name);
        if (known == names_.end())
            fail("$" + std::string(name) + " is not defined (a dollar sign is \\x24)");
        expanded += known->second.text;
        used_.insert(known->second.line);
        at = stop;
    }
    return expanded;
}

std::string Reader::unescape(std::string_view text) const
{
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            plain += text[at];
            continue;
        }
        const char escaped = ++at < text.size() ? text[at] : '\0';
        if (escaped == '\\' || escaped == '"' || escaped == '|') {
            plain += escaped;
        } else if (escaped == 'x' && at + 2 < text.size()) {
            unsigned byte = 0;
            const char *digits = text.data() + at + 1;
            if (std::from_chars(digits, digits + 2, byte, 16).ptr != digits + 2)
                fail("\\x takes two hexadecimal digits");
            plain += static_cast<char>(byte);
            at += 2;
        } else {
            fail("a backslash starts \\\\, \\\", \\|, \\xHH, or is \\N alone");
        }
    }
    return plain;
}

template <typename T> T Reader::number(std::string_view text) const
{
    T value{};
    int base = 10;
    std::string_view digits = text;
    if (startsWith(digits, "0x")) {
        digits.remove_prefix(2);
        base = 16;
    }
    const char *stop = digits.data() + digits.size();
    const auto [read, error] = std::from_chars(digits.data(), stop, value, base);
    if (digits.empty() || read != stop || error != std::errc())
        fail("'" + std::string(text) + "' is not a number in range");
    return value;
}

std::size_t Reader::ordinal(std::string_view text) const
{
    const auto value = number<std::uint32_t>(text);
    if (value == 0)
        fail("counting starts at 1");
    return value;
}

void Reader::end(const Words &words) const
{
    if (!words.rest().empty())
        fail("'" + std::string(words.rest()) + "' is too much");
}

// TEXT cut at its bars that are not escaped.
std::vector<std::string_view> Reader::splitAtBars(std::string_view text) const
{
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    for (std::size_t at = 0; at <= text.size(); ++at) {
        if (at < text.size() && text[at] == '\\') {
            ++at;
        } else if (at >= text.size() || text[at] == '|') {
            parts.push_back(text.substr(start, at - start));
            start = at + 1;
        }
    }
    return parts;
}

Data Reader::data(std::uint32_t type, std::string_view text) const
{
    constexpr std::uint32_t kList = 2;
    constexpr std::uint32_t kPresenceContainer = 4;
    switch (type) {
    case 9:
    case 19:
    case 20:
    case 21: {
        const auto value = number<std::uint32_t>(text);
        const std::uint32_t largest = type == 21   ? std::numeric_limits<std::uint32_t>::max()
                                      : type == 20 ? 0xffff
                                                   : 0xff;
        if (value > largest)
            fail("'" + std::string(text) + "' does not fit its type");
        return value;
    }
    default:
        if (type >= kList && type <= kPresenceContainer) {
            if (!text.empty())
                fail("a list or container has no text");
            return std::monostate{};
        }
        if (text == kNull)
            return NullString{};
        return unescape(text);
    }
}

// XPATH|TYPE|TEXT, or - for a null pointer.
std::optional<Value> Reader::value(std::string_view text) const
{
    if (text == "-")
        return std::nullopt;
    const auto parts = splitAtBars(text);
    if (parts.size() != 3)
        fail("a value is XPATH|TYPE|TEXT or -");
    Value made;
    if (parts[0] != kNull)
        made.xpath = unescape(parts[0]);
    made.type = number<std::uint32_t>(parts[1]);
    made.data = data(made.type, parts[2]);
    return made;
}

void Reader::readLine(std::string_view line)
{
    if (line[0] == ' ')
        return readIndented(line.substr(line.find_first_not_of(' ')));
    block_ = Block::None;
    Words words(line);
    const std::string_view word = words.next();
    if (using_block_ && (word == "==" || word == "block" || word == "use"))
        fail("a block holds no case and no other block");
    if (startsWith(line, "=="))
        return openCase(line);
    if (word == "let")
        return define(words.rest());
    if (word == "block")
        return startBlock(words.rest());
    if (word == "use")
        return useBlock(words.rest());
    if (readChange(word, words) || readPlatform(word, words))
        return;
    if (!in_case_)
        fail("'" + std::string(word) + "' does not belong before the first case");
    if (!readExpectation(word, words))
        fail("'" + std::string(word) + "' is unknown");
}

void Reader::openCase(std::string_view line)
{
    if (line.size() < 7 || !startsWith(line, "== ") || line.substr(line.size() - 3) != " ==")
        fail("a case starts with == TITLE ==");
    if (in_case_)
        closeCase();
    else
        storePreamble();
    in_case_ = true;
    names_ = preamble_names_;
    current_ = preamble_;
    current_.file = path_;
    current_.line = line_;
    current_.title = line.substr(3, line.size() - 6);
    for (const ScenarioCase &other : cases_)
        if (other.title == current_.title)
            fail("there is another case of this title");
    callback_given_ = result_given_ = false;
}

// What stands before the first case holds for every case.
void Reader::storePreamble()
{
    preamble_ = current_;
    preamble_plays_callback_ = callback_given_;
    preamble_names_ = names_;
}

void Reader::closeCase()
{
    if (!in_case_)
        return;
    if (!callback_given_ && !preamble_plays_callback_)
        failAt(current_.line, "case '" + current_.title + "' plays no callback");
    if (!result_given_)
        failAt(current_.line, "case '" + current_.title + "' has no result");
    cases_.push_back(std::move(current_));
}

void Reader::define(std::string_view text)
{
    const std::size_t equals = text.find(" = ");
    if (equals == 0 || equals == std::string_view::npos ||
        !std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(equals),
                     isNameCharacter))
        fail("a definition is let NAME = TEXT");
    const std::string name(text.substr(0, equals));
    names_[name] = {line_, std::string(text.substr(equals + 3))};
    definitions_[line_] = '$' + name;
}

void Reader::startBlock(std::string_view name)
{
    if (in_case_)
        fail("a block is stored before the first case");
    const auto [stored, is_new] = blocks_.try_emplace(std::string(name), StoredBlock{line_, {}});
    if (!is_new)
        fail("there is another block of this name");
    definitions_[line_] = "block '" + std::string(name) + '\'';
    stored_ = &stored->second;
    block_ = Block::Stored;
}

// Reads the lines of a block as if they stood here.
void Reader::useBlock(std::string_view name)
{
    const auto stored = blocks_.find(name);
    if (stored == blocks_.end())
        fail("there is no block '" + std::string(name) + "'");
    used_.insert(stored->second.line);
    const std::size_t here = line_;
    using_block_ = true;
    for (const StoredLine &line : stored->second.lines) {
        line_ = line.number;
        readLine(expand(line.text));
    }
    using_block_ = false;
    line_ = here;
}

bool Reader::readChange(std::string_view word, Words words)
{
    static const std::map<std::string_view, std::uint32_t> kOperations = {
        {"CREATED", 0}, {"MODIFIED", 1}, {"DELETED", 2}, {"MOVED", 3}};
    Change change;
    if (word == "change") {
        const std::string_view oper = words.next();
        const auto known = kOperations.find(oper);
        if (known == kOperations.end() && (oper.empty() || !isDigit(oper[0])))
            fail("'" + std::string(oper) + "' is no operation");
        change.oper = known != kOperations.end() ? known->second : number<std::uint32_t>(oper);
        const std::string_view values = words.rest();
        const std::size_t split = values.find(" new=");
        if (!startsWith(values, "old=") || split == std::string_view::npos)
            fail("a change is change OPER old=VALUE new=VALUE");
        change.old_value = value(values.substr(4, split - 4));
        change.new_value = value(values.substr(split + 5));
    } else if (word == "created") {
        change.oper = 0;
        change.new_value = value(words.rest());
    } else if (word == "deleted") {
        change.oper = 2;
        change.old_value = value(words.rest());
    } else if (word == "modified") {
        const auto parts = splitAtBars(words.rest());
        if (parts.size() != 4)
            fail("a modification is modified XPATH|TYPE|OLD|NEW");
        const std::string head = std::string(parts[0]) + '|' + std::string(parts[1]) + '|';
        change.oper = 1;
        change.old_value = value(head + std::string(parts[2]));
        change.new_value = value(head + std::string(parts[3]));
    } else {
        return false;
    }
    current_.scenario.changes.push_back(std::move(change));
    return true;
}

bool Reader::readPlatform(std::string_view word, Words words)
{
    Scenario &scenario = current_.scenario;
    if (word == "callback") {
        if (callback_given_)
            fail("a case plays one callback");
        const std::string_view xpath = words.next();
        const auto row =
            std::find_if(kSubscriptions.begin(), kSubscriptions.end(),
                         [&](const Subscription &known) { return xpath == known.xpath; });
        if (row == kSubscriptions.end())
            fail("nothing is subscribed to '" + std::string(xpath) + "'");
        if (!words.take("event"))
            fail("a callback is callback XPATH event N");
        scenario.callback = row->callback;
        scenario.xpath = row->xpath;
        scenario.event = number<std::uint32_t>(words.next());
        callback_given_ = true;
    } else if (word == "event") {
        scenario.event = number<std::uint32_t>(words.next());
    } else if (word == "log-level") {
        const int level = number<int>(words.next());
        if (words.take("from")) {
            if (!words.take("call"))
                fail("a change of the level is log-level N from call M");
            scenario.log_level_from_call[ordinal(words.next())] = level;
        } else {
            scenario.log_level = level;
        }
    } else if (word == "changes-iter" && words.take("returns")) {
        scenario.changes_iter = number<std::int32_t>(words.next());
    } else if (word == "next" && words.take("call")) {
        const std::size_t call = ordinal(words.next());
        if (!words.take("returns"))
            fail("a failing walk is next call N returns CODE");
        scenario.next_result[call] = number<std::int32_t>(words.next());
    } else if (word == "end-of-changes" && words.take("is")) {
        scenario.end_of_changes = number<std::int32_t>(words.next());
    } else if (word == "xpath" && words.take("stays") && words.take("whole")) {
        scenario.cuts_xpath = false;
    } else if (word == "strerror" && words.take("is") && words.take("null")) {
        scenario.strerror_null = true;
    } else if (word == "node-name" && words.take("call")) {
        scenario.node_name_null.insert(ordinal(words.next()));
        if (!words.take("is") || !words.take("null"))
            fail("a missing name is node-name call N is null");
    } else if (word == "key" && words.take("call")) {
        scenario.key_null.insert(ordinal(words.next()));
        if (!words.take("is") || !words.take("null"))
            fail("a missing key is key call N is null");
    } else if (word == "unhex" && words.take("call")) {
        const std::size_t call = ordinal(words.next());
        if (!words.take("returns"))
            fail("a failing conversion is unhex call N returns CODE");
        scenario.unhex_result[call] = number<std::int32_t>(words.next());
    } else if (word == "exchange") {
        readExchange(words);
        return true;
    } else {
        return false;
    }
    end(words);
    return true;
}

// exchange N STEP CODE, and the shapes of a reply.
void Reader::readExchange(Words words)
{
    Exchange &exchange = current_.scenario.exchanges[ordinal(words.next())];
    const std::string_view step = words.next();
    if (step == "context") {
        if (!words.take("null"))
            fail("a context fails by being null");
        exchange.null_context = true;
    } else if (step == "reply") {
        Reply &reply = exchange.reply;
        while (!words.rest().empty()) {
            const std::string_view part = words.next();
            if (part == "null")
                reply.null_data = true;
            else if (part == "result")
                reply.result = number<std::uint32_t>(words.next());
            else if (part == "length-field")
                reply.length_field = number<std::uint32_t>(words.next());
            else if (part == "decoded-length")
                reply.decoded_length = number<std::uint32_t>(words.next());
            else
                fail("'" + std::string(part) + "' is no part of a reply");
        }
    } else {
        const std::map<std::string_view, std::int32_t *> steps = {{"object", &exchange.object_set},
                                                                  {"encode", &exchange.encode},
                                                                  {"send", &exchange.send},
                                                                  {"receive", &exchange.receive},
                                                                  {"decode", &exchange.decode}};
        const auto known = steps.find(step);
        if (known == steps.end())
            fail("'" + std::string(step) + "' is no step of an exchange");
        if (!words.take("returns"))
            fail("a failing step is exchange N " + std::string(step) + " returns CODE");
        *known->second = number<std::int32_t>(words.next());
    }
    end(words);
}

bool Reader::readExpectation(std::string_view word, Words words)
{
    if (word == "request") {
        readRequest(words);
        return true;
    }
    if (word == "log" || word == "error" || word == "debug") {
        readLogLine(word, words);
        return true;
    }
    if (word == "no" && words.take("log")) {
        if (current_.logs || !current_.errors.empty() || !current_.debugs.empty())
            fail(kNoLogAlone);
        current_.logs.emplace();
    } else if (word == "calls") {
        if (current_.calls)
            fail("a case has one list of calls");
        current_.calls.emplace();
        block_ = Block::Calls;
    } else if (word == "result") {
        if (result_given_)
            fail("a case has one result");
        current_.result = number<std::int32_t>(words.next());
        result_given_ = true;
    } else if (word == "iterator" && words.take("stays") && words.take("open")) {
        current_.iterator_stays_open = true;
    } else {
        return false;
    }
    end(words);
    return true;
}

// log SEVERITY FUNCTION TEXT, and the same of one severity.
void Reader::readLogLine(std::string_view word, Words words)
{
    if (current_.logs && current_.logs->empty())
        fail(kNoLogAlone);
    if (word == "error" ? current_.logs.has_value() : word == "log" && !current_.errors.empty())
        fail("'log' gives all lines, those of errors too");
    std::string line = "log ";
    if (word == "log") {
        const std::string_view severity = words.next();
        if (severity != "DBG" && severity != "ERR")
            fail("a severity is DBG or ERR");
        line += severity;
    } else {
        line += word == "error" ? "ERR" : "DBG";
    }
    line += ' ';
    line += words.next();
    line += ' ';
    appendQuoted(line, unescape(words.rest()));
    if (word == "log" && !current_.logs)
        current_.logs.emplace();
    (word == "log"     ? *current_.logs
     : word == "error" ? current_.errors
                       : current_.debugs)
        .push_back(line);
}

// request TYPE set|undo [length 0]
void Reader::readRequest(Words words)
{
    ExpectedRequest request;
    request.line = line_;
    request.message_type = number<std::uint32_t>(words.next());
    const PayloadRecord *record = payloadRecord(request.message_type);
    if (record == nullptr)
        fail("message type " + std::to_string(request.message_type) + " is never sent");
    const std::string_view direction = words.next();
    if (direction != "set" && direction != "undo")
        fail("a request is request TYPE set or request TYPE undo");
    std::size_t length = record->size;
    if (words.take("length")) {
        length = number<std::uint32_t>(words.next());
        if (length != 0)
            fail("the only other length is 0");
    }
    end(words);
    request.block = headerBytes(
        {request.message_type, direction == "set" ? 1U : 0U, static_cast<std::uint32_t>(length)});
    request.block.append(length, '\0');
    current_.requests.push_back(std::move(request));
    fields_given_.clear();
    block_ = Block::Request;
}

void Reader::readIndented(std::string_view line)
{
    if (block_ == Block::Calls)
        current_.calls->emplace_back(line);
    else if (block_ == Block::Request)
        readField(line);
    else
        fail("an indented line belongs to a block, a request or to calls");
}

void Reader::readField(std::string_view line)
{
    ExpectedRequest &request = current_.requests.back();
    Words words(line);
    const std::string_view name = words.next();
    if (!fields_given_.emplace(name).second)
        fail("'" + std::string(name) + "' is given twice");
    if (name == "answer") {
        current_.scenario.exchanges[current_.requests.size()].reply.result =
            number<std::uint32_t>(words.next());
        return end(words);
    }
    const Field *field = payloadRecord(request.message_type)->field(name);
    if (field == nullptr || kHeaderSize + field->offset + field->size > request.block.size())
        fail("message type " + std::to_string(request.message_type) + " has no field '" +
             std::string(name) + "' here");
    const std::size_t offset = kHeaderSize + field->offset;
    if (field->kind == FieldKind::Text) {
        const std::string text = unescape(words.rest());
        if (text.size() > field->size)
            fail("the text does not fit its field");
        request.block.replace(offset, text.size(), text);
        return;
    }
    const auto value = number<std::uint32_t>(words.next());
    if (field->size < 4 && value >> (8 * field->size) != 0)
        fail("the number does not fit its field");
    putNumber(request.block, offset, field->size, value);
    end(words);
}

} // namespace

std::vector<ScenarioCase> readScenarioFile(const std::string &path)
{
    return Reader(path).read();
}

} // namespace aaanc::test
