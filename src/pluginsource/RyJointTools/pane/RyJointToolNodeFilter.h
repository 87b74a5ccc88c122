#pragma once

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/ui/RyNodeListFilter.h"

#include <QPointer>

/// Offers the primary selection, its skeleton and all bones of that; every node while nothing is selected.
class RyJointToolNodeFilter : public RyNodeListFilter
{
public:
    void refresh() override;
    bool accept(RyNode *node) override;

private:
    QPointer<RyNode> m_primary;
    QPointer<RySkeleton> m_skeleton;
};
