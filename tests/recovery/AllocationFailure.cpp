#include "recovery/AllocationFailure.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include <pthread.h>

namespace {

std::atomic<const char *> failing{nullptr};
thread_local int passing = -1;        // here, before the one that fails; -1 for ever
thread_local std::size_t counted = 0; // from this size on

bool fails(std::size_t size)
{
    if (size >= counted && passing >= 0 && passing-- == 0)
        return true;
    const char *wanted = failing.load();
    char name[16] = {};
    return wanted && pthread_getname_np(pthread_self(), name, sizeof(name)) == 0 && std::strcmp(name, wanted) == 0 &&
           failing.compare_exchange_strong(wanted, nullptr);
}

} // namespace

void AllocationFailure::failNextIn(const char *thread)
{
    failing = thread;
}

bool AllocationFailure::hasFailed()
{
    return !failing.load();
}

void AllocationFailure::failHere(int before, std::size_t size)
{
    counted = size;
    passing = before;
}

int AllocationFailure::stopFailingHere()
{
    return std::exchange(passing, -1);
}

// All of them, so that none is paired with one of the library or of a sanitizer. Who can do without never fails.
void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    return std::malloc(size > 0 ? size : 1);
}

void *operator new[](std::size_t size, const std::nothrow_t &tag) noexcept
{
    return operator new(size, tag);
}

void *operator new(std::size_t size)
{
    void *memory = fails(size) ? nullptr : std::malloc(size > 0 ? size : 1);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void *operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, const std::nothrow_t &) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory, const std::nothrow_t &) noexcept
{
    std::free(memory);
}
