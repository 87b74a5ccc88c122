#include "rycore/math/RyLargePages.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#ifdef __linux__
#include <sys/mman.h>
#endif

// The address sanitizer has a heap of its own.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
#define RY_HAS_LIBRARY_HEAP
#include <malloc.h>
#include <unistd.h>
#endif

static constexpr std::size_t MoreThanIsLeft = std::size_t(1) << 20;

void RyLargePages::prefer(void *begin, std::size_t bytes)
{
#ifdef __linux__
    constexpr std::uintptr_t Small = 4096;
    constexpr std::size_t Large = std::size_t(2) << 20;
    if (bytes < 2 * Large)
        return;
    // The call takes whole pages; what else lies on the first and the last one stays alone.
    const std::uintptr_t first = (reinterpret_cast<std::uintptr_t>(begin) + Small - 1) / Small * Small;
    const std::uintptr_t end = (reinterpret_cast<std::uintptr_t>(begin) + bytes) / Small * Small;
    madvise(reinterpret_cast<void *>(first), end - first, MADV_HUGEPAGE);
#else
    (void)begin;
    (void)bytes;
#endif
}

void RyLargePages::growHeap(std::size_t bytes)
{
#ifdef RY_HAS_LIBRARY_HEAP
    // What the C library comes to by itself once large blocks were freed.
    constexpr int LargestMapped = 32 << 20, MostKept = 64 << 20;
    // What is never touched takes no memory.
    constexpr int UsualPad = 128 << 10;
    mallopt(M_MMAP_THRESHOLD, LargestMapped);
    mallopt(M_TRIM_THRESHOLD, MostKept);
    bytes = std::min(bytes, std::size_t(MostKept));
    mallopt(M_TOP_PAD, int(bytes));
    const auto end = reinterpret_cast<std::uintptr_t>(sbrk(0));
    void *volatile piece = std::malloc(MoreThanIsLeft); // which the compiler must not leave out
    mallopt(M_TOP_PAD, UsualPad);
    std::free(piece);
    // Nothing where a freed piece had room for it.
    const auto newEnd = reinterpret_cast<std::uintptr_t>(sbrk(0));
    if (newEnd > end)
        prefer(reinterpret_cast<void *>(end), newEnd - end);
#else
    (void)bytes;
#endif
}

void RyLargePages::growHeapBehind(const void *latest)
{
#ifdef RY_HAS_LIBRARY_HEAP
    constexpr std::size_t Room = std::size_t(32) << 20;
    static std::uintptr_t s_asked = 0; // the end at which there was room elsewhere
    const auto end = reinterpret_cast<std::uintptr_t>(sbrk(0));
    if (end == s_asked || end - reinterpret_cast<std::uintptr_t>(latest) >= MoreThanIsLeft)
        return;
    s_asked = end;
    growHeap(Room);
#else
    (void)latest;
#endif
}
