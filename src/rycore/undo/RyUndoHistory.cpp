#include "rycore/undo/RyUndoHistory.h"

#include "rycore/undo/RyUndoHistoryAccess.h"
#include "rycore/undo/RyUndoStep.h"

#include <algorithm>

RyUndoHistory::RyUndoHistory(const RyUndoStack &stack)
{
    const RyUndoHistoryAccess::History history = RyUndoHistoryAccess::historyOf(stack);
    steps.reserve(history.steps.size());
    for (const std::shared_ptr<RyUndoStep> &step : history.steps)
        steps.push_back({step->caption, step->time, step->number, step->isEmpty()});
    index = history.index;
    cleanIndex = history.cleanIndex;
}

quint64 RyUndoHistory::lastNumber() const
{
    quint64 last = 0;
    for (const Step &step : steps)
        last = std::max(last, step.number);
    return last;
}

bool RyUndoHistory::walk(RyUndoStack &stack, int index)
{
    if (index < 0 || index > stack.count())
        return false;
    while (stack.index() > index && stack.canUndo())
        stack.undo();
    while (stack.index() < index && stack.canRedo())
        stack.redo();
    return stack.index() == index;
}
