#include "pluginsource/RyJointTools/tool/drags/makeDrag.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/RyPointDrag.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"

#include "rycore/scene/RyNode.h"

static bool isJointPoint(const RyHandle &handle)
{
    return handle.target == RyHandle::Origin || handle.target == RyHandle::EndPoint;
}

std::unique_ptr<RyHandleDrag> makeDrag(const RyHandle *handle, const RyDragContext &context)
{
    if (handle && context.node && isJointPoint(*handle)) {
        const auto point = handle->target == RyHandle::Origin ? RyPointDrag::Origin : RyPointDrag::EndPoint;
        return std::make_unique<RyPointDrag>(context, point, handle->axis);
    }
    return std::make_unique<RyHandleDrag>(context.node);
}
