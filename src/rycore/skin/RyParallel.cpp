#include "rycore/skin/RyParallel.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/parallel_invoke.h>

void RyParallel::forRanges(std::size_t count, std::size_t grain,
                           const std::function<void(std::size_t, std::size_t)> &work)
{
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, count, grain),
                      [&work](const tbb::blocked_range<std::size_t> &range) { work(range.begin(), range.end()); });
}

void RyParallel::both(const std::function<void()> &one, const std::function<void()> &other)
{
    tbb::parallel_invoke(one, other);
}
