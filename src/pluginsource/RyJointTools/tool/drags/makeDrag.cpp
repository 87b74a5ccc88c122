#include "pluginsource/RyJointTools/tool/drags/makeDrag.h"

#include "pluginsource/RyJointTools/tool/drags/RyAngleDrag.h"
#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/RyPointDrag.h"
#include "pluginsource/RyJointTools/tool/drags/RySphereMoveDrag.h"
#include "pluginsource/RyJointTools/tool/drags/RySphereScaleDrag.h"
#include "pluginsource/RyJointTools/tool/drags/RySphereTurnDrag.h"
#include "pluginsource/RyJointTools/tool/drags/RyZoneDrag.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"

#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/scene/RyNode.h"

using DragPtr = std::unique_ptr<RyHandleDrag>;

/// Whether the context has what the handle changes.
static bool hasTarget(RyHandle::Target target, const RyDragContext &context)
{
    const RyLegacyJointParam *param = context.param;
    switch (target) {
    case RyHandle::Origin:
    case RyHandle::EndPoint:
        return true;
    case RyHandle::DynamicSphere:
    case RyHandle::StaticSphere:
        return param;
    case RyHandle::BendAngle:
        return param && param->type() == RyLegacyJointParam::Bend && context.setAngle;
    case RyHandle::TwistZone:
        return param && param->type() == RyLegacyJointParam::Twist;
    case RyHandle::HighZone:
    case RyHandle::LowZone:
        return param && param->type() == RyLegacyJointParam::SmoothScale;
    }
    return false;
}

static DragPtr makePointDrag(const RyHandle &handle, const RyDragContext &context)
{
    const auto point = handle.target == RyHandle::Origin ? RyPointDrag::Origin : RyPointDrag::EndPoint;
    return std::make_unique<RyPointDrag>(context, point, handle.axis);
}

static DragPtr makeSphereDrag(const RyHandle &handle, const RyDragContext &context)
{
    const auto sphere = handle.target == RyHandle::DynamicSphere ? RySphereDrag::Dynamic : RySphereDrag::Static;
    if (handle.kind == RyHandle::Ring)
        return std::make_unique<RySphereTurnDrag>(context, sphere, handle.axis);
    if (handle.kind == RyHandle::AxisArrow)
        return std::make_unique<RySphereMoveDrag>(context, sphere, handle.axis);
    return std::make_unique<RySphereScaleDrag>(context, sphere, handle.axis);
}

std::unique_ptr<RyHandleDrag> makeDrag(const RyHandle *handle, const RyDragContext &context)
{
    if (!handle || !context.node || !hasTarget(handle->target, context))
        return std::make_unique<RyHandleDrag>(context.param ? static_cast<RyElement *>(context.param) : context.node);
    switch (handle->kind) {
    case RyHandle::AngleRay:
        return std::make_unique<RyAngleDrag>(context, handle->value - RyHandle::AngleA);
    case RyHandle::Zone:
        return std::make_unique<RyZoneDrag>(context, RyZoneDrag::End{handle->target, handle->value});
    default:
        const bool isPoint = handle->target == RyHandle::Origin || handle->target == RyHandle::EndPoint;
        return isPoint ? makePointDrag(*handle, context) : makeSphereDrag(*handle, context);
    }
}
