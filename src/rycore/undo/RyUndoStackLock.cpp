#include "rycore/undo/RyUndoStackLock.h"

#include "rycore/undo/RyUndoStack.h"

RyUndoStackLock::RyUndoStackLock() : m_locked(false)
{
    if (RyUndoStack *stack = ryUndoStack()) {
        stack->setLocked(true);
        m_locked = true;
    }
}

RyUndoStackLock::~RyUndoStackLock()
{
    unlock();
}

void RyUndoStackLock::unlock()
{
    if (!m_locked)
        return;
    m_locked = false;
    if (RyUndoStack *stack = ryUndoStack())
        stack->setLocked(false);
}
