#pragma once

#include "pluginsource/RyJointTools/tool/drags/RyDragContext.h"
#include "pluginsource/RyJointTools/tool/drags/RyParamDrag.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"

/// Lays a ray of a bend under the mouse.
class RyAngleDrag : public RyParamDrag
{
public:
    /// `index` is 0 to 3 for A to D; the context's parameter is a bend.
    RyAngleDrag(const RyDragContext &context, int index);

    RyVec3 dragVector(const RyLine3 &ray) const override;

protected:
    void change(const Options &options) override;
    void changeBack() override;

private:
    int m_index;
    int m_axis; // of the bend
    RyHandleFrame m_frame;
    RyHandleFrame::AngleReferences m_references;
    RyDragContext::SetAngle m_setAngle;
    RyBendAngles::Values m_start; // degrees
};
