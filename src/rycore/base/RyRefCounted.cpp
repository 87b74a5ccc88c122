#include "rycore/base/RyRefCounted.h"

void RyRefCountedItem::destroy()
{
    delete this;
}
