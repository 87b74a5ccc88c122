#include "recovery/AllocationFailure.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

#include <pthread.h>

namespace {

std::atomic<const char *> failing{nullptr};

bool fails()
{
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

void *operator new(std::size_t size)
{
    void *memory = fails() ? nullptr : std::malloc(size > 0 ? size : 1);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}
