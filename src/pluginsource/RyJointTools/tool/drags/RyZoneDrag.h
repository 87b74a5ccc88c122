#pragma once

#include "pluginsource/RyJointTools/tool/drags/RyParamDrag.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"

/// Moves one end of a twist or smooth zone along the parameter's axis, by the way in the world: exact where nothing is
/// scaled. Smooth zones of the two sides of a joint are the same stretch told from either end.
class RyZoneDrag : public RyParamDrag
{
public:
    /// An end of one of the zones.
    struct End
    {
        RyHandle::Target zone;
        RyHandle::Value value; // Start or End
    };
    /// The context's parameter has that zone.
    RyZoneDrag(const RyDragContext &context, const End &end);

    RyVec3 dragVector(const RyLine3 &ray) const override;

protected:
    void change(const Options &options) override;

private:
    End m_end;
    int m_axis;
    RyHandleFrame m_frame;
    float m_start;
};
