#pragma once

#include <QString>

class RyUndoStack;

/// Opens a step. `accept` pushes exactly one step, even an empty one; `cancel` reverts and pushes none; the destructor
/// cancels what was neither. Holds nest: an inner accept merges into the outer hold, an inner cancel reverts its own
/// share. A hold may live across events. Accepting or cancelling a second time does nothing.
class RyUndoStackHold
{
public:
    RyUndoStackHold();
    ~RyUndoStackHold();
    RyUndoStackHold(const RyUndoStackHold &) = delete;
    RyUndoStackHold &operator=(const RyUndoStackHold &) = delete;

    void accept(const QString &caption);
    void cancel();

private:
    RyUndoStack *m_stack;
    int m_level; // depth of this hold, 0 once it has ended
};
