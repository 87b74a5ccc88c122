#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"

#include "rycore/math/RyRotationOrder.h"

/// Gives the primary selection a rotation order. No class of its own for the meta-object system.
class RyJERotationOrderAction : public RyJEToolAction
{
protected:
    /// `caption` is that of the undo step, a source text of the context RyJEToolAction.
    RyJERotationOrderAction(const QMetaObject &actionClass, RyRotationOrder::Code order, const char *caption);

    /// Always one undo step, also when the node has that order already and when nothing is selected.
    void setOrderOfPrimarySelection() const;

private:
    RyRotationOrder m_order;
    const char *m_caption;
};
