#include "rycore/script/prototypes/RyRestoreScripting.h"

#include "rycore/undo/restore/RyRestorePoints.h"

int RyRestoreScripting::count() const
{
    const RyRestorePoints *points = ryRestorePoints();
    return points ? points->count() : 0;
}

QString RyRestoreScripting::caption(int index) const
{
    const RyRestorePoints *points = ryRestorePoints();
    return points ? points->caption(index) : QString();
}

bool RyRestoreScripting::restore(int index) const
{
    RyRestorePoints *points = ryRestorePoints();
    return points && points->restore(index);
}
