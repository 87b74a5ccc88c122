#include "ryhost/start/startMemory.h"

#include "rycore/math/RyLargePages.h"

#include <cstdlib>

// The address sanitizer has a heap of its own.
#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)
#define RY_HAS_LIBRARY_HEAP
#include <malloc.h>
#endif

void prepareStartMemory()
{
#ifdef RY_HAS_LIBRARY_HEAP
    // What the C library comes to by itself once large blocks were freed.
    constexpr int LargestMapped = 32 << 20, MostKept = 64 << 20;
    // What is never touched takes no memory.
    constexpr int Start = 48 << 20, UsualPad = 128 << 10;
    mallopt(M_MMAP_THRESHOLD, LargestMapped);
    mallopt(M_TRIM_THRESHOLD, MostKept);
    mallopt(M_TOP_PAD, Start);
    constexpr std::size_t MoreThanIsLeft = std::size_t(1) << 20;
    void *const first = std::malloc(MoreThanIsLeft);
    mallopt(M_TOP_PAD, UsualPad);
    if (first)
        RyLargePages::prefer(first, std::size_t(Start));
    std::free(first);
#endif
}
