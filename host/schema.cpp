#include "schema.hpp"

#include <charconv>

#include "input_error.hpp"
#include "printable.hpp"

namespace aaanc
{

namespace
{

constexpr const char *kModule = "orvek-aaa";

std::string_view orEmpty(const char *text)
{
    return text != nullptr ? text : "";
}

// What is between quotes; empty without any.
std::string quotedIn(std::string_view text)
{
    const std::size_t begin = text.find('"') + 1; // npos + 1 is 0
    return begin == 0 ? "" : std::string(text.substr(begin, text.rfind('"') - begin));
}

// The path of a node that libyang gives as a place, with or without words around it.
std::string nodeIn(std::string_view place)
{
    return place.starts_with('/') ? std::string(place) : quotedIn(place);
}

// The N of: Line number N. Else 0.
std::size_t lineIn(std::string_view text)
{
    constexpr std::string_view kLine = "Line number ";
    std::size_t line = 0;
    if (text.starts_with(kLine)) {
        std::from_chars(text.data() + kLine.size(), text.data() + text.size(), line);
    }
    return line;
}

const ly_err_item *nextError(const ly_err_item *item)
{
    while (item != nullptr && item->level != LY_LLERR) {
        item = item->next;
    }
    return item;
}

// The first error is the cause of those that follow. The second one names the module
// that it is in, which may be another one that is imported.
[[noreturn]] void refuseModule(const ly_ctx *context, const std::filesystem::path &directory)
{
    const ly_err_item *cause = nextError(ly_err_first(context));
    const ly_err_item *effect = cause != nullptr ? nextError(cause->next) : nullptr;
    const std::string message = "the module cannot be loaded: " +
                                printable(cause != nullptr ? orEmpty(cause->msg) : "unknown error");
    const std::string_view place = orEmpty(cause != nullptr ? cause->path : nullptr);
    const auto file =
        directory / (quotedIn(orEmpty(effect != nullptr ? effect->msg : nullptr)) + ".yang");
    if (const std::size_t line = lineIn(place); line != 0 && std::filesystem::exists(file)) {
        throw InputError(file.string(), line, "", message);
    }
    const std::string node = nodeIn(place);
    throw InputError(directory.string(), 0, node.empty() ? kModule : node, message);
}

} // namespace

Schema::Schema(const std::filesystem::path &directory)
{
    // Errors are kept with the context and told by whoever meets them.
    ly_log_options(LY_LOSTORE);
    ly_ctx *context = nullptr;
    if (ly_ctx_new(directory.c_str(), LY_CTX_NO_YANGLIBRARY | LY_CTX_DISABLE_SEARCHDIR_CWD,
                   &context) != LY_SUCCESS) {
        throw InputError(directory.string(), 0, "", "not a directory with YANG modules");
    }
    context_.reset(context);
    if (ly_ctx_load_module(context, kModule, nullptr, nullptr) == nullptr) {
        refuseModule(context, directory);
    }
    ly_log_options(LY_LOSTORE_LAST); // of data the last one tells all
}

const lysc_node *Schema::find(const std::string &path) const
{
    return lys_find_path(context(), nullptr, path.c_str(), 0);
}

std::string Schema::lastError() const
{
    const char *message = ly_errmsg(context());
    return message != nullptr ? printable(message) : "unknown error";
}

std::string Schema::lastErrorNode() const
{
    return nodeIn(orEmpty(ly_errpath(context())));
}

} // namespace aaanc
