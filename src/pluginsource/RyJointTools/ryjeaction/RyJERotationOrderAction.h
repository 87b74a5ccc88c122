#pragma once

#include "pluginsource/RyJointTools/ryjeaction/RyJEToolAction.h"
#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"

#include "rycore/math/RyRotationOrder.h"

/// Gives the primary selection a rotation order. No class of its own for the meta-object system.
class RyJERotationOrderAction : public RyJEToolAction
{
protected:
    RyJERotationOrderAction(const QMetaObject &actionClass, RyRotationOrder::Code order);

    /// Always one undo step, also when the node has that order already and when nothing is selected.
    void setOrderOfPrimarySelection() const;

private:
    RyRotationOrder m_order;
};
