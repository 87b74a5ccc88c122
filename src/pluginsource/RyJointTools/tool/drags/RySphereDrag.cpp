#include "pluginsource/RyJointTools/tool/drags/RySphereDrag.h"

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"

#include "rycore/parametric/RyLegacyJointParam.h"

RySphereDrag::RySphereDrag(const RyDragContext &context, Sphere sphere)
    : RyParamDrag(context), m_sphere(sphere),
      m_start(sphere == Dynamic ? context.param->getDynamicMatrix() : context.param->getStaticMatrix()),
      m_space(RyParamSpace::of(*context.param, *context.node))
{}

RyLegacyJointSphere &RySphereDrag::sphereOf(const RyLegacyJointParam &param) const
{
    return m_sphere == Dynamic ? *param.getDynamicSphere() : *param.getStaticSphere();
}

void RySphereDrag::setMatrix(const RyMatrix4 &matrix) const
{
    for (RyLegacyJointParam *side : sides()) {
        if (m_sphere == Dynamic)
            side->setDynamicMatrix(matrix);
        else
            side->setStaticMatrix(matrix);
    }
}
