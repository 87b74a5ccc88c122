#pragma once

/// The memory of this program runs out where a test wants it to.
namespace AllocationFailure {

/// The next allocation by `new` in the thread of that name fails, once.
void failNextIn(const char *thread);
/// Whether one has failed since.
bool hasFailed();

} // namespace AllocationFailure
