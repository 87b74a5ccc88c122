#include "rycore/parametric/RyLegacyLoop.h"

void RyLegacyKernels::movePlain(const Task &task)
{
    moveTask(task);
}
