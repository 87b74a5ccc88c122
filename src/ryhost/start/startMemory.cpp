#include "ryhost/start/startMemory.h"

#include "rycore/math/RyLargePages.h"

void prepareStartMemory()
{
    constexpr std::size_t Start = std::size_t(48) << 20;
    RyLargePages::growHeap(Start);
}
