// The program's own malloc family stands before the C library's for every shared object that is
// loaded into it. Where a sanitizer has taken that place, its hooks count instead.

#include "tests/render/allocations.h"

#include <atomic>
#include <cerrno>
#include <cstddef>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TOLM_SANITIZER_COUNTS
// Of every sanitizer's runtime; not every compiler brings the header.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*,
                                                                          std::size_t),
                                                         void (*onFree)(const volatile void*));
#endif

namespace {

std::atomic<long> allocations{0};

} // namespace

#ifdef TOLM_SANITIZER_COUNTS

namespace {

const int installed = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t) { allocations.fetch_add(1, std::memory_order_relaxed); },
    [](const volatile void*) {});

} // namespace

#else

extern "C" {

void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);

#define TOLM_COUNTED __attribute__((visibility("default"), noinline))

TOLM_COUNTED void* malloc(std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}
TOLM_COUNTED void* calloc(std::size_t count, std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}
TOLM_COUNTED void* realloc(void* memory, std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(memory, size);
}
TOLM_COUNTED void* memalign(std::size_t alignment, std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_memalign(alignment, size);
}
TOLM_COUNTED void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}
TOLM_COUNTED int posix_memalign(void** memory, std::size_t alignment, std::size_t size)
{
    *memory = memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}

} // extern "C"

#endif

namespace tolm::test {

long allocationCount()
{
    return allocations.load(std::memory_order_relaxed);
}

} // namespace tolm::test
