#pragma once

#include <cstddef>

/// The memory of this program runs out where a test wants it to.
namespace AllocationFailure {

/// The next allocation by `new` in the thread of that name fails, once.
void failNextIn(const char *thread);
/// Whether one has failed since.
bool hasFailed();

/// An allocation by `new` in the present thread fails, once, when `before` others have passed. Those of fewer than
/// `size` bytes do not count.
void failHere(int before, std::size_t size = 0);
/// It shall not fail any more. How many more could have passed; -1 when it has failed.
int stopFailingHere();

} // namespace AllocationFailure
