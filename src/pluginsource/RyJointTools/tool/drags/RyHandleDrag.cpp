#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"

#include "rycore/base/RyElement.h"
#include "rycore/undo/RyUndoStackHold.h"

RyHandleDrag::RyHandleDrag(RyElement *element) : m_element(element) {}

RyHandleDrag::~RyHandleDrag()
{
    cancel();
}

RyVec3 RyHandleDrag::dragVector(const RyLine3 &) const
{
    return {};
}

void RyHandleDrag::press(const RyLine3 &ray)
{
    m_pressVector = m_currentVector = dragVector(ray);
}

void RyHandleDrag::move(const RyLine3 &ray, const Options &options)
{
    open();
    m_currentVector = dragVector(ray);
    apply(options);
}

void RyHandleDrag::apply(const Options &) {}

bool RyHandleDrag::propagateOrigin(RyNode *, const RyVec3 &)
{
    return false;
}

void RyHandleDrag::open()
{
    if (m_hold)
        return;
    m_hold = std::make_unique<RyUndoStackHold>();
    if (m_element)
        m_element->beginEdit();
}

void RyHandleDrag::finish(const QString &caption)
{
    const std::unique_ptr<RyUndoStackHold> hold = std::move(m_hold);
    if (!hold)
        return;
    if (m_element)
        m_element->finishEdit();
    hold->accept(caption);
}

void RyHandleDrag::cancel()
{
    const std::unique_ptr<RyUndoStackHold> hold = std::move(m_hold);
    if (!hold)
        return;
    hold->cancel();
    if (m_element)
        m_element->cancelEdit();
}
