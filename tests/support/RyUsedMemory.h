#pragma once

#include <QtGlobal>

#include <malloc.h>

/// Whether the allocator of this build counts what it gives.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool ryMemoryIsCounted = false;
#else
constexpr bool ryMemoryIsCounted = true;
#endif

/// Bytes that the program holds of the heap.
inline qint64 ryUsedMemory()
{
    const struct mallinfo2 info = mallinfo2();
    return qint64(info.uordblks) + qint64(info.hblkhd);
}
