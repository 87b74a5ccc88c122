#pragma once

#include <cstddef>
#include <vector>

/// For large arrays that are about to be filled: fresh memory comes in pages, and most of the time of a fast reader
/// goes into thousands of small ones.
namespace RyLargePages {

/// Asks for large pages under memory that nobody has touched yet. A wish, which may do nothing.
void prefer(void *begin, std::size_t bytes);

/// Room in large pages for small things that are about to be made, at the end of the C library's heap, unless that has
/// a megabyte left. From then on the heap of the process keeps what is freed at its end, up to 64 MB. Does nothing
/// where the heap is another.
void growHeap(std::size_t bytes);
/// The same with room for a few thousand nodes, where `latest`, made last, lies at the very end of the heap.
void growHeapBehind(const void *latest);

/// `values.resize(count)` for an empty vector.
template<typename T>
void resize(std::vector<T> &values, std::size_t count)
{
    values.reserve(count);
    prefer(values.data(), count * sizeof(T));
    values.resize(count);
}

} // namespace RyLargePages
