#include "AllocationCounter.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstring>

// The benchmark programs interpose the C allocator: glibc no longer has allocation
// hooks, and counting at malloc also catches what GLib and the C++ runtime allocate.
// The definitions must stay visible, otherwise the shared libraries keep glibc's.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* pointer, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* pointer);
}

namespace {

std::atomic<uint64_t> g_allocationCalls{0};
std::atomic<uint64_t> g_allocationBytes{0};
std::atomic<uint64_t> g_watchedSize{0};
std::atomic<uint64_t> g_watchedCalls{0};

inline void Count(size_t bytes)
{
    g_allocationCalls.fetch_add(1, std::memory_order_relaxed);
    g_allocationBytes.fetch_add(bytes, std::memory_order_relaxed);
    if (bytes == g_watchedSize.load(std::memory_order_relaxed))
        g_watchedCalls.fetch_add(1, std::memory_order_relaxed);
}

} // namespace

#define VB3_BENCH_EXPORT __attribute__((visibility("default")))

extern "C" {

VB3_BENCH_EXPORT void* malloc(size_t size)
{
    Count(size);
    return __libc_malloc(size);
}

VB3_BENCH_EXPORT void* calloc(size_t count, size_t size)
{
    Count(count * size);
    return __libc_calloc(count, size);
}

VB3_BENCH_EXPORT void* realloc(void* pointer, size_t size)
{
    Count(size);
    return __libc_realloc(pointer, size);
}

VB3_BENCH_EXPORT void free(void* pointer)
{
    __libc_free(pointer);
}

VB3_BENCH_EXPORT void* memalign(size_t alignment, size_t size)
{
    Count(size);
    return __libc_memalign(alignment, size);
}

VB3_BENCH_EXPORT void* aligned_alloc(size_t alignment, size_t size)
{
    Count(size);
    return __libc_memalign(alignment, size);
}

VB3_BENCH_EXPORT int posix_memalign(void** result, size_t alignment, size_t size)
{
    if (alignment == 0 || (alignment & (alignment - 1)) != 0 || alignment % sizeof(void*) != 0)
        return EINVAL;
    Count(size);
    void* pointer = __libc_memalign(alignment, size);
    if (pointer == nullptr)
        return ENOMEM;
    *result = pointer;
    return 0;
}

} // extern "C"

namespace Bench {

AllocationTotals AllocationCounter::Totals()
{
    return {g_allocationCalls.load(std::memory_order_relaxed), g_allocationBytes.load(std::memory_order_relaxed)};
}

void AllocationCounter::WatchSize(uint64_t bytes)
{
    g_watchedSize.store(bytes, std::memory_order_relaxed);
}

uint64_t AllocationCounter::WatchedCalls()
{
    return g_watchedCalls.load(std::memory_order_relaxed);
}

} // namespace Bench
