#include "trace_text.hpp"

namespace aaanc::test
{

void appendQuoted(std::string &line, std::string_view text)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    line += '"';
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\\' || c == '"') {
            line += '\\';
            line += c;
        } else if (byte < 0x20 || byte > 0x7e) {
            line += "\\x";
            line += kDigits[byte >> 4];
            line += kDigits[byte & 0xf];
        } else {
            line += c;
        }
    }
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
