#pragma once

#include "rycore/undo/RyUndoStack.h"

#include <QPointer>
#include <QString>

/// Opens a step. `accept` pushes exactly one step, even an empty one; `cancel` reverts and pushes none; the destructor
/// cancels what was neither. Holds nest: an inner accept merges into the outer hold, an inner cancel reverts its own
/// share. A hold may live across events. Accepting or cancelling a second time does nothing. Holds that end in another
/// order stay exact: an accepted one joins the hold it was opened in, a cancelled one reverts what came after it too. A
/// hold opened while undo or redo runs does nothing.
class RyUndoStackHold
{
public:
    RyUndoStackHold();
    ~RyUndoStackHold();
    RyUndoStackHold(const RyUndoStackHold &) = delete;
    RyUndoStackHold &operator=(const RyUndoStackHold &) = delete;

    void accept(const QString &caption);
    void cancel();
    /// Ends it without a step; what it changed stays.
    void forget();

private:
    QPointer<RyUndoStack> m_stack;
    int m_id; // 0 once it has ended
};
