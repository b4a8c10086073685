// XML by expat, which knows the line of every element.
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include <expat.h>
#include <fmt/format.h>

#include "document_builder.hpp"
#include "printable.hpp"

namespace aaanc
{

namespace
{

constexpr std::string_view kNetconf = "urn:ietf:params:xml:ns:netconf:base:1.0";
constexpr char kSeparator = '|';

// A name as expat gives it: "NAMESPACE|LOCAL", or "LOCAL" where it has none.
struct Name {
    explicit Name(std::string_view text)
    {
        const std::size_t separator = text.rfind(kSeparator);
        if (separator != std::string_view::npos) {
            space = text.substr(0, separator);
        }
        local = text.substr(separator + 1); // npos + 1 is 0
    }
    std::string_view space;
    std::string_view local;
};

bool isBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

class XmlReader
{
public:
    explicit XmlReader(DocumentBuilder &builder)
        : builder_(builder), parser_(XML_ParserCreateNS(nullptr, kSeparator))
    {
        if (!parser_) {
            throw std::bad_alloc();
        }
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(parser_.get(), onStart, onEnd);
        XML_SetCharacterDataHandler(parser_.get(), onText);
        XML_SetStartDoctypeDeclHandler(parser_.get(), onDoctype);
    }

    void read(std::string_view text)
    {
        constexpr std::size_t kChunk = 1U << 20U; // expat counts in int
        do {
            const std::string_view chunk = text.substr(0, kChunk);
            text.remove_prefix(chunk.size());
            const XML_Status status = XML_Parse(parser_.get(), chunk.data(),
                                                static_cast<int>(chunk.size()), text.empty());
            if (failure_) {
                std::rethrow_exception(failure_);
            }
            if (status != XML_STATUS_OK) {
                builder_.fail(line(), XML_ErrorString(XML_GetErrorCode(parser_.get())));
            }
        } while (!text.empty());
    }

private:
    std::size_t line() const
    {
        return XML_GetCurrentLineNumber(parser_.get());
    }

    // No exception passes through expat: it is kept, and thrown after it.
    template <typename Action> void guard(Action action)
    {
        if (failure_) {
            return;
        }
        try {
            action();
        } catch (...) {
            failure_ = std::current_exception();
            XML_StopParser(parser_.get(), XML_FALSE);
        }
    }

    static void onStart(void *self, const char *name, const char **attributes)
    {
        auto *reader = static_cast<XmlReader *>(self);
        reader->guard([=] { reader->start(Name(name), attributes); });
    }
    static void onEnd(void *self, const char *)
    {
        auto *reader = static_cast<XmlReader *>(self);
        reader->guard([=] { reader->end(); });
    }
    static void onText(void *self, const char *text, int length)
    {
        auto *reader = static_cast<XmlReader *>(self);
        reader->guard([=] { reader->text({text, static_cast<std::size_t>(length)}); });
    }
    static void onDoctype(void *self, const char *, const char *, const char *, int)
    {
        auto *reader = static_cast<XmlReader *>(self);
        reader->guard([=] {
            reader->builder_.fail(reader->line(), "a document type declaration is not allowed");
        });
    }

    void start(const Name &name, const char **attributes)
    {
        if (isWrapper(name)) {
            wrapped_ = true;
            if (*attributes != nullptr) {
                builder_.fail(line(), fmt::format("attribute \"{}\" of \"{}\", which takes none",
                                                  printable(Name(*attributes).local), name.local));
            }
            return;
        }
        const lys_module *module = ly_ctx_get_module_implemented_ns(
            builder_.schema().context(), std::string(name.space).c_str());
        if (module == nullptr) {
            builder_.fail(line(), fmt::format("unknown node \"{}\" of namespace \"{}\"",
                                              printable(name.local), printable(name.space)));
        }
        const lysc_node *schema = builder_.resolve(module, name.local, line());
        builder_.open(schema, line());
        if (isLeaf(schema)) {
            builder_.top().value.emplace();
        }
        for (; *attributes != nullptr; attributes += 2) {
            const Name attribute(attributes[0]);
            if (attribute.space != kNetconf || attribute.local != "operation") {
                builder_.fail(line(),
                              fmt::format("unknown attribute \"{}\"", printable(attribute.local)));
            }
            builder_.setOperation(builder_.top(), attributes[1], line());
        }
    }

    // What NETCONF puts around a configuration.
    bool isWrapper(const Name &name) const
    {
        return builder_.atRoot() && !wrapped_ && name.space == kNetconf &&
               (name.local == "config" || name.local == "data");
    }

    void text(std::string_view text)
    {
        if (builder_.top().value) {
            *builder_.top().value += text;
        } else if (!isBlank(text)) {
            builder_.fail(line(), "text where only nodes can be");
        }
    }

    void end()
    {
        if (!builder_.atRoot()) {
            builder_.close();
        }
    }

    struct Free {
        void operator()(XML_Parser parser) const
        {
            XML_ParserFree(parser);
        }
    };
    DocumentBuilder &builder_;
    std::unique_ptr<XML_ParserStruct, Free> parser_;
    std::exception_ptr failure_;
    bool wrapped_ = false;
};

} // namespace

void readXml(DocumentBuilder &builder, std::string_view text)
{
    XmlReader(builder).read(text);
}

} // namespace aaanc
