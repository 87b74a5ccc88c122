#pragma once

#include <cstddef>
#include <functional>

namespace RyParallel {

/// Calls `work(begin, end)` for ranges that together make up 0 to `count`, in several threads, and waits for all of
/// them. Ranges are not cut below `grain`. Kept apart from the thread library's headers, which clash with Qt's
/// keywords.
void forRanges(std::size_t count, std::size_t grain, const std::function<void(std::size_t, std::size_t)> &work);

/// Calls both, at the same time where there is a thread for it, and waits for both. The other one runs on the calling
/// thread.
void both(const std::function<void()> &one, const std::function<void()> &other);

} // namespace RyParallel
