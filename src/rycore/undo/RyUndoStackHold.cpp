#include "rycore/undo/RyUndoStackHold.h"

#include <utility>

RyUndoStackHold::RyUndoStackHold() : m_stack(ryUndoStack()), m_id(m_stack ? m_stack->openHold() : 0) {}

RyUndoStackHold::~RyUndoStackHold()
{
    cancel();
}

void RyUndoStackHold::accept(const QString &caption)
{
    const int id = std::exchange(m_id, 0);
    if (id && m_stack)
        m_stack->acceptHold(id, caption);
}

void RyUndoStackHold::cancel()
{
    const int id = std::exchange(m_id, 0);
    if (id && m_stack)
        m_stack->cancelHold(id);
}

void RyUndoStackHold::forget()
{
    const int id = std::exchange(m_id, 0);
    if (id && m_stack)
        m_stack->forgetHold(id);
}
