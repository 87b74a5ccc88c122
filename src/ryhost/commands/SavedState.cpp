#include "ryhost/commands/SavedState.h"

#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/timeText.h"

SavedState SavedState::now(Kind kind)
{
    const RyUndoStack *stack = ryUndoStack();
    return {kind, QDateTime::currentDateTime(), stack ? stack->number(stack->count() - 1) : 0, {}};
}

QString SavedState::text() const
{
    const QString clock = timeTextOf(time);
    switch (kind) {
    case Started:
        return tr("the empty scene of %1").arg(clock);
    case Opened:
        return tr("the opening at %1").arg(clock);
    case Imported:
        return tr("the reading of %1 at %2").arg(file, clock);
    case Recovered:
        return tr("the recovery at %1").arg(clock);
    case Saved:
        break;
    }
    return tr("the save of %1").arg(clock);
}
