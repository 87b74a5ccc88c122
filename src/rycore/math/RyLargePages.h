#pragma once

#include <cstddef>
#include <vector>

/// For large arrays that are about to be filled: fresh memory comes in pages, and most of the time of a fast reader
/// goes into thousands of small ones.
namespace RyLargePages {

/// Asks for large pages under memory that nobody has touched yet. A wish, which may do nothing.
void prefer(void *begin, std::size_t bytes);

/// `values.resize(count)` for an empty vector.
template<typename T>
void resize(std::vector<T> &values, std::size_t count)
{
    values.reserve(count);
    prefer(values.data(), count * sizeof(T));
    values.resize(count);
}

} // namespace RyLargePages
