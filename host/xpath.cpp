#include "xpath.hpp"

namespace aaanc
{

namespace
{

// "module:name" means "name".
std::string_view localName(std::string_view name)
{
    return name.substr(name.find(':') + 1); // npos + 1 is 0
}

// Reads an xpath that may have been cut.
class Scanner
{
public:
    explicit Scanner(char *at) : at_(at) {}

    [[nodiscard]] bool atEnd() const
    {
        return at_[0] == '\0' && at_[1] == '\0';
    }
    [[nodiscard]] bool at(char character) const
    {
        return *at_ == character;
    }
    [[nodiscard]] char *position() const
    {
        return at_;
    }
    void step()
    {
        if (!atEnd()) {
            ++at_;
        }
    }

    std::string_view until(std::string_view stops)
    {
        char *begin = at_;
        while (!atEnd() && stops.find(*at_) == std::string_view::npos) {
            ++at_;
        }
        return {begin, static_cast<std::size_t>(at_ - begin)};
    }

    // Steps to the end of a quoted value: its quote, or the NUL that replaced it.
    void skipValue(char quote)
    {
        while (*at_ != quote && *at_ != '\0') {
            ++at_;
        }
    }

private:
    char *at_;
};

} // namespace

bool isAtOrBelow(std::string_view xpath, std::string_view path)
{
    std::size_t matched = 0;
    char quote = '\0';
    bool predicate = false;
    for (const char character : xpath) {
        if (quote != '\0') {
            quote = character == quote ? '\0' : quote;
        } else if (predicate) {
            quote = character == '\'' || character == '"' ? character : '\0';
            predicate = character != ']';
        } else if (character == '[') {
            predicate = true;
        } else if (matched == path.size()) {
            return character == '/';
        } else if (character != path[matched++]) {
            return false;
        }
    }
    return matched == path.size();
}

std::size_t xpathBufferSize(std::string_view xpath)
{
    return xpath.size() + 2;
}

const char *xpathNodeName(const char *xpath)
{
    const char *last = nullptr;
    char quote = '\0';
    for (const char *at = xpath; *at != '\0'; ++at) {
        if (quote != '\0') {
            quote = *at == quote ? '\0' : quote;
        } else if (*at == '\'' || *at == '"') {
            quote = *at;
        } else if (*at == '/') {
            last = at;
        }
    }
    return last != nullptr && last != xpath ? last + 1 : nullptr;
}

char *xpathKeyValue(char *xpath, std::string_view node, std::string_view key)
{
    Scanner scanner(xpath);
    while (!scanner.atEnd()) {
        scanner.until("/");
        scanner.step();
        const bool wanted_node = localName(scanner.until("/[")) == node;
        while (scanner.at('[')) {
            scanner.step();
            const bool wanted_key = localName(scanner.until("=")) == key;
            scanner.until("'\"");
            if (scanner.atEnd()) {
                return nullptr;
            }
            const char quote = *scanner.position();
            scanner.step();
            char *value = scanner.position();
            scanner.skipValue(quote);
            if (wanted_node && wanted_key) {
                *scanner.position() = '\0';
                return value;
            }
            scanner.until("]");
            scanner.step();
        }
    }
    return nullptr;
}

} // namespace aaanc
