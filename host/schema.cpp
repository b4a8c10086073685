#include "schema.hpp"

#include "input_error.hpp"
#include "printable.hpp"

namespace aaanc
{

namespace
{

constexpr const char *kModule = "orvek-aaa";

} // namespace

Schema::Schema(const std::filesystem::path &directory)
{
    // Errors are kept with the context and told by whoever meets them.
    ly_log_options(LY_LOSTORE_LAST);
    ly_ctx *context = nullptr;
    if (ly_ctx_new(directory.c_str(), LY_CTX_NO_YANGLIBRARY | LY_CTX_DISABLE_SEARCHDIR_CWD,
                   &context) != LY_SUCCESS) {
        throw InputError(directory.string(), 0, "", "not a directory with YANG modules");
    }
    context_.reset(context);
    if (ly_ctx_load_module(context, kModule, nullptr, nullptr) == nullptr) {
        throw InputError(directory.string(), 0, kModule,
                         "the module cannot be loaded: " + lastError());
    }
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

} // namespace aaanc
