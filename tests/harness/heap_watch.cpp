#include "heap_watch.hpp"

#include <cerrno>

#if defined(__has_feature)
#define AAANC_SANITIZED (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define AAANC_SANITIZED 1
#else
#define AAANC_SANITIZED 0
#endif

namespace
{

thread_local bool in_plugin = false;
thread_local std::size_t uses = 0;

void noteUse()
{
    if (in_plugin)
        ++uses;
}

} // namespace

#if AAANC_SANITIZED

// The sanitizers have an allocator of their own, which tells. GCC comes without
// the header that declares this.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*on_malloc)(const volatile void *,
                                                                           std::size_t),
                                                         void (*on_free)(const volatile void *));

static const int hooked =
    __sanitizer_install_malloc_and_free_hooks([](const volatile void *, std::size_t) { noteUse(); },
                                              [](const volatile void *) { noteUse(); });

#else

// In front of the C library's.
extern "C" {

void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *memory);

void *malloc(std::size_t size)
{
    noteUse();
    return __libc_malloc(size);
}

void *calloc(std::size_t count, std::size_t size)
{
    noteUse();
    return __libc_calloc(count, size);
}

void *realloc(void *memory, std::size_t size)
{
    noteUse();
    return __libc_realloc(memory, size);
}

void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    noteUse();
    return __libc_memalign(alignment, size);
}

int posix_memalign(void **memory, std::size_t alignment, std::size_t size)
{
    *memory = aligned_alloc(alignment, size);
    return *memory != nullptr ? 0 : ENOMEM;
}

void free(void *memory)
{
    noteUse();
    __libc_free(memory);
}

} // extern "C"

#endif

namespace aaanc::test
{

InPlugin::InPlugin() : outer_(in_plugin), uses_before_(uses)
{
    in_plugin = true;
}

InPlugin::~InPlugin()
{
    in_plugin = outer_;
}

std::size_t InPlugin::heapUses() const
{
    return uses - uses_before_;
}

InPlatform::InPlatform() : in_plugin_(in_plugin)
{
    in_plugin = false;
}

InPlatform::~InPlatform()
{
    in_plugin = in_plugin_;
}

} // namespace aaanc::test
