#include "rycore/parametric/RyLegacyKernels.h"

#if defined(__x86_64__) && defined(__GNUC__)

#include <cmath>

// What is compiled from here on may only run where RySkinKernels::hasAvx2().
#pragma GCC push_options
#pragma GCC target("avx2,fma")
#pragma GCC optimize("O3")

#include "rycore/parametric/RyLegacyLoop.h"

void RyLegacyKernels::moveAvx2(const Task &task)
{
    moveTask(task);
}

#pragma GCC pop_options

#else

void RyLegacyKernels::moveAvx2(const Task &task)
{
    movePlain(task);
}

#endif
