#pragma once

#include "rycore/undo/RyUndoStack.h"

/// Goes back where no step leads: takes the history of a stack and puts it in place again. For who does not
/// outlive the stack.
class RyUndoHistoryAccess
{
public:
    using History = RyUndoStack::History;

    explicit RyUndoHistoryAccess(RyUndoStack *stack) : m_stack(stack) {}

    /// Neither a hold is open nor a change being swapped or discarded.
    bool isIdle() const { return m_stack->isIdle(); }
    History history() const { return m_stack->history(); }
    /// Runs `swapAll`, which leads to the state that the history belongs to, as undo runs, then puts the history in
    /// place.
    void exchangeHistory(const History &history, const std::function<void()> &swapAll)
    {
        m_stack->exchangeHistory(history, swapAll);
    }
    /// Within `swapAll`: redoes (`done`) or undoes a step.
    void swapStep(RyUndoStep &step, bool done) { m_stack->swapStep(step, done); }
    /// Runs `drop`; what dies in it is no edit.
    void discardIn(const std::function<void()> &drop) { m_stack->discardIn(drop); }

private:
    RyUndoStack *m_stack;
};
