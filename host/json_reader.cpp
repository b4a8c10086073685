// JSON (RFC 7951, with the metadata of RFC 7952) by nlohmann's SAX parser.
#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "document_builder.hpp"
#include "printable.hpp"

namespace aaanc
{

namespace
{

constexpr std::string_view kOperationAnnotation = "ietf-netconf:operation";

// Reads a text and counts its lines into a counter outside, since the parser
// copies iterators and tells no positions.
class CountingIterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;

    CountingIterator(const char *at, std::size_t *line) : at_(at), line_(line) {}
    reference operator*() const
    {
        return *at_;
    }
    CountingIterator &operator++()
    {
        *line_ += *at_ == '\n' ? 1U : 0U;
        ++at_;
        return *this;
    }
    CountingIterator operator++(int)
    {
        CountingIterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const CountingIterator &other) const
    {
        return at_ == other.at_;
    }
    bool operator!=(const CountingIterator &other) const
    {
        return at_ != other.at_;
    }

private:
    const char *at_;
    std::size_t *line_;
};

enum class ScalarKind { Null, Boolean, Number, String };

// The JSON type that RFC 7951 gives to values of a leaf; none where any will do.
std::optional<ScalarKind> scalarKindOf(const lysc_node *leaf)
{
    switch (reinterpret_cast<const lysc_node_leaf *>(leaf)->type->basetype) {
    case LY_TYPE_INT8:
    case LY_TYPE_INT16:
    case LY_TYPE_INT32:
    case LY_TYPE_UINT8:
    case LY_TYPE_UINT16:
    case LY_TYPE_UINT32:
        return ScalarKind::Number;
    case LY_TYPE_BOOL:
        return ScalarKind::Boolean;
    case LY_TYPE_UNION:
        return std::nullopt;
    default:
        return ScalarKind::String;
    }
}

const char *nameOf(ScalarKind kind)
{
    switch (kind) {
    case ScalarKind::Boolean:
        return "true or false";
    case ScalarKind::Number:
        return "a number";
    default:
        return "a string";
    }
}

class JsonReader : public nlohmann::json_sax<nlohmann::json>
{
public:
    JsonReader(DocumentBuilder &builder, std::string_view text) : builder_(builder), text_(text) {}

    void read()
    {
        nlohmann::json::sax_parse(CountingIterator(text_.data(), &line_),
                                  CountingIterator(text_.data() + text_.size(), &line_), this);
    }

    bool null() override
    {
        return scalar(ScalarKind::Null, {});
    }
    bool boolean(bool value) override
    {
        return scalar(ScalarKind::Boolean, value ? "true" : "false");
    }
    bool number_integer(number_integer_t value) override
    {
        return scalar(ScalarKind::Number, std::to_string(value));
    }
    bool number_unsigned(number_unsigned_t value) override
    {
        return scalar(ScalarKind::Number, std::to_string(value));
    }
    bool number_float(number_float_t, const string_t &text) override
    {
        return scalar(ScalarKind::Number, text);
    }
    bool string(string_t &value) override
    {
        return scalar(ScalarKind::String, value);
    }
    bool binary(binary_t &) override
    {
        return false;
    } // JSON has none

    bool start_object(std::size_t) override
    {
        if (frames_.empty()) {
            frames_.push_back({FrameKind::Node});
            return true;
        }
        Frame &frame = frames_.back();
        if (frame.kind == FrameKind::Entries) {
            builder_.open(frame.member, line_);
            frames_.push_back({FrameKind::Node});
        } else if (frame.kind == FrameKind::Node && frame.annotated) {
            frames_.push_back({FrameKind::Metadata});
        } else if (frame.kind == FrameKind::Node && frame.member->nodetype == LYS_CONTAINER) {
            builder_.open(frame.member, frame.member_line);
            frames_.push_back({FrameKind::Node});
        } else {
            misplaced("an object");
        }
        return true;
    }

    bool key(string_t &name) override
    {
        Frame &frame = frames_.back();
        if (frame.kind == FrameKind::Metadata) {
            if (name != kOperationAnnotation) {
                builder_.fail(line_, fmt::format("unknown annotation \"{}\"", printable(name)));
            }
            return true;
        }
        if (std::ranges::find(frame.names, name) != frame.names.end()) {
            builder_.fail(line_, fmt::format("duplicate member \"{}\"", printable(name)));
        }
        frame.names.push_back(name);
        frame.member_line = line_;
        frame.annotated = name.starts_with('@');
        if (name == "@") {
            frame.member = nullptr;
            if (builder_.atRoot()) {
                builder_.fail(line_, "an annotation of nothing");
            }
        } else {
            frame.member = resolve(std::string_view(name).substr(frame.annotated ? 1 : 0));
            if (frame.annotated && !isLeaf(frame.member)) {
                builder_.fail(line_, "only a leaf is annotated from outside");
            }
        }
        return true;
    }

    bool end_object() override
    {
        const Frame frame = std::move(frames_.back());
        frames_.pop_back();
        if (frame.kind == FrameKind::Node) {
            for (const Annotation &annotation : frame.annotations) {
                annotate(annotation);
            }
            if (!frames_.empty()) {
                builder_.close();
            }
        }
        return true;
    }

    bool start_array(std::size_t) override
    {
        if (frames_.empty()) {
            misplaced("an array");
        }
        Frame &frame = frames_.back();
        if (frame.kind != FrameKind::Node || frame.annotated || !isList(frame.member)) {
            misplaced("an array");
        }
        Frame entries{FrameKind::Entries};
        entries.member = frame.member;
        frames_.push_back(std::move(entries));
        return true;
    }

    bool end_array() override
    {
        frames_.pop_back();
        return true;
    }

    bool parse_error(std::size_t position, const std::string &,
                     const nlohmann::json::exception &error) override
    {
        const std::string_view before = text_.substr(0, position == 0 ? 0 : position - 1);
        const std::size_t line = 1 + static_cast<std::size_t>(std::ranges::count(before, '\n'));
        std::string message = error.what();
        const std::size_t column = message.find("column");
        if (column == std::string::npos) { // the only error that has no place of its own
            builder_.fail(line, "a number that is too large to be read");
        }
        // What was read last is left out, since it may be a shared key.
        message = message.substr(column, message.find("; last read") - column);
        builder_.fail(line, message.substr(message.find(": ") + 2));
    }

private:
    // An annotation may come before the leaf that it is of.
    struct Annotation {
        const lysc_node *leaf;
        std::string operation;
        std::size_t line;
    };
    enum class FrameKind { Node, Entries, Metadata };
    // An object or array that is open.
    struct Frame {
        FrameKind kind;
        const lysc_node *member = nullptr; // whose value comes next; of Entries: the list
        std::size_t member_line = 0;
        bool annotated = false; // what comes next is metadata, of the node itself if member is null
        std::vector<std::string> names{};
        std::vector<Annotation> annotations{};
    };

    const lysc_node *resolve(std::string_view name)
    {
        const lys_module *module = nullptr;
        if (const std::size_t colon = name.find(':'); colon != std::string_view::npos) {
            module = ly_ctx_get_module_implemented(builder_.schema().context(),
                                                   std::string(name.substr(0, colon)).c_str());
            if (module == nullptr) {
                builder_.fail(line_, fmt::format("unknown node \"{}\"", printable(name)));
            }
            name.remove_prefix(colon + 1);
        } else if (builder_.atRoot()) {
            builder_.fail(
                line_, fmt::format("\"{0}\" lacks the name of its module, as in \"orvek-aaa:{0}\"",
                                   printable(name)));
        }
        return builder_.resolve(module, name, line_);
    }

    bool scalar(ScalarKind kind, std::string value)
    {
        if (frames_.empty()) {
            misplaced("a value");
        }
        Frame &frame = frames_.back();
        if (frame.kind == FrameKind::Metadata) {
            if (kind != ScalarKind::String) {
                builder_.fail(line_, "an operation is a string");
            }
            Frame &owner = frames_[frames_.size() - 2];
            if (owner.member == nullptr) {
                builder_.setOperation(builder_.top(), value, line_);
            } else {
                owner.annotations.push_back({owner.member, std::move(value), owner.member_line});
            }
            return true;
        }
        if (frame.kind != FrameKind::Node || frame.annotated || !isLeaf(frame.member)) {
            misplaced("a value");
        }
        builder_.open(frame.member, frame.member_line);
        if (kind != ScalarKind::Null) {
            const std::optional<ScalarKind> wanted = scalarKindOf(frame.member);
            if (wanted && *wanted != kind) {
                builder_.fail(frame.member_line,
                              fmt::format("the value has to be {}", nameOf(*wanted)));
            }
            builder_.top().value = std::move(value);
        }
        builder_.close();
        return true;
    }

    void annotate(const Annotation &annotation)
    {
        std::vector<DocumentNode> &children = builder_.top().children;
        auto leaf = std::ranges::find(children, annotation.leaf, &DocumentNode::schema);
        if (leaf == children.end()) {
            // What is to be deleted needs no value.
            builder_.open(annotation.leaf, annotation.line);
            builder_.close();
            leaf = std::prev(children.end());
        }
        builder_.setOperation(*leaf, annotation.operation, annotation.line);
    }

    [[noreturn]] void misplaced(const char *what)
    {
        const char *wanted = "the members of an object";
        if (!frames_.empty()) {
            const Frame &frame = frames_.back();
            const lysc_node *member = frame.member;
            wanted = frame.kind != FrameKind::Node || frame.annotated || !member ? "an object"
                     : isLeaf(member)                                            ? "a value"
                     : isList(member)                                            ? "an array"
                                                                                 : "an object";
            if (member != nullptr && frame.kind == FrameKind::Node && !frame.annotated) {
                builder_.fail(frame.member_line, fmt::format("\"{}\" has to be {}, not {}",
                                                             member->name, wanted, what));
            }
        }
        builder_.fail(line_, fmt::format("{} where {} should be", what, wanted));
    }

    DocumentBuilder &builder_;
    std::string_view text_;
    std::size_t line_ = 1;
    std::vector<Frame> frames_;
};

} // namespace

void readJson(DocumentBuilder &builder, std::string_view text)
{
    JsonReader(builder, text).read();
}

} // namespace aaanc
