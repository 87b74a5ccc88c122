#include "pluginsource/RyJointTools/ryjeaction/selectionRules.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"

bool isAnyNode(const RyNode *primary)
{
    return primary != nullptr;
}

bool isSkeletonOrBone(const RyNode *primary)
{
    return qobject_cast<const RySkeleton *>(primary) || isBone(primary);
}

bool isBone(const RyNode *primary)
{
    return qobject_cast<const RyBone *>(primary) != nullptr;
}

bool isOfFigure(const RyNode *primary)
{
    return primary && qobject_cast<const RyFigure *>(primary->getSkeleton());
}
