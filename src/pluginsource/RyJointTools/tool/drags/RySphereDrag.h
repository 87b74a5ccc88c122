#pragma once

#include "pluginsource/RyJointTools/tool/drags/RyParamDrag.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"
#include "pluginsource/RyJointTools/tool/handles/RyParamSpace.h"

#include "rycore/math/RyMatrix4.h"

class RyLegacyJointSphere;

/// What the drags of a sphere's handles have in common.
class RySphereDrag : public RyParamDrag
{
public:
    enum Sphere { Dynamic, Static };

protected:
    RySphereDrag(const RyDragContext &context, Sphere sphere);

    /// Of a parameter on either side.
    RyLegacyJointSphere &sphereOf(const RyLegacyJointParam &param) const;
    void setMatrix(const RyMatrix4 &matrix) const;
    /// As it was at the press.
    const RyMatrix4 &start() const { return m_start; }
    const RyParamSpace &space() const { return m_space; }

private:
    Sphere m_sphere;
    RyMatrix4 m_start;
    RyParamSpace m_space;
};
