#include "trace_text.hpp"

namespace aaanc::test
{

void appendQuoted(std::string &line, std::string_view text)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    line += '"';
    std::size_t plain = 0; // start of what needs no escape
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const bool is_printable = byte >= 0x20 && byte <= 0x7e;
        if (is_printable && text[at] != '\\' && text[at] != '"')
            continue;
        line += text.substr(plain, at - plain);
        plain = at + 1;
        line += '\\';
        if (is_printable) {
            line += text[at];
        } else {
            line += 'x';
            line += kDigits[byte >> 4];
            line += kDigits[byte & 0xf];
        }
    }
    line += text.substr(plain);
    line += '"';
}

void appendQuoted(std::string &line, const char *text)
{
    if (text == nullptr)
        line += "null";
    else
        appendQuoted(line, std::string_view(text));
}

} // namespace aaanc::test
