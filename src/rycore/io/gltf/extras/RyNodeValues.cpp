#include "rycore/io/gltf/extras/RyNodeValues.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyNode.h"

#include <algorithm>

RyNodeValues RyNodeValues::of(const RyNode &node)
{
    RyNodeValues values;
    const RyNodeRigging::Controls &rigging = node.riggingControls();
    const RyNodePose::Controls &pose = node.poseControls();
    for (size_t i = 0; i < rigging.size(); ++i) {
        if (rigging[i]) {
            values.rigging[i] = rigging[i]->getValue();
            values.riggingDefaults[i] = rigging[i]->getDefaultValue();
        }
    }
    for (size_t i = 0; i < pose.size(); ++i)
        values.pose[i] = pose[i]->getValue();
    values.rotationOrder = node.getRotationOrder().order();
    values.inheritScale = node.inheritsScale();
    values.name = node.getName();
    values.label = node.hasOwnLabel() ? node.getLabel() : QString();
    return values;
}

bool RyNodeValues::sameOrigin(const RyNodeValues &o) const
{
    return std::equal(rigging.begin(), rigging.begin() + 3, o.rigging.begin());
}

bool RyNodeValues::sameOrientation(const RyNodeValues &o) const
{
    return std::equal(rigging.begin() + 6, rigging.end(), o.rigging.begin() + 6);
}

bool RyNodeValues::samePoseButForOrigin(const RyNodeValues &o) const
{
    return pose == o.pose && rotationOrder == o.rotationOrder && inheritScale == o.inheritScale && sameOrientation(o);
}

bool RyNodeValues::samePose(const RyNodeValues &o) const
{
    return samePoseButForOrigin(o) && sameOrigin(o);
}
