// Hex dumps of requests, as aaanc decode reads them.
#include <bit>
#include <string>

#include "dump_reader.hpp"
#include "input_error.hpp"
#include "messages.hpp"
#include "targets.hpp"
#include "texts.hpp"

namespace aaanc::test::fuzz
{

namespace
{

// A field's text can be shown, whatever its bytes are.
std::string requestFinding(const aaanc::Bytes &block, std::endian order)
{
    const std::optional<Request> request = decodeRequest(block, order);
    if (request.has_value() != (block.size() >= kHeaderSize))
        return "a block of " + std::to_string(block.size()) + " bytes is told wrongly";
    for (std::size_t i = 0; request && i < request->fields.size(); ++i) {
        if (!isOneLine(fieldText(request->fields[i])))
            return "a field is not printable";
    }
    return "";
}

} // namespace

std::string fuzzDump(Bytes bytes)
{
    const std::string text = textOf(bytes);
    try {
        const Dump dump = readDump("dump.txt", text);
        const std::string finding = requestFinding(dump.bytes, std::endian::big);
        return !finding.empty() ? finding : requestFinding(dump.bytes, std::endian::little);
    } catch (const InputError &error) {
        // The one error that is of no line.
        const std::string what = error.what();
        return what == "dump.txt: there are no bytes in it" ? ""
                                                            : errorFinding(what, "dump.txt", text);
    }
}

} // namespace aaanc::test::fuzz
