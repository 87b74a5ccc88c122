#include "rycore/math/RyLargePages.h"

#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#endif

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
