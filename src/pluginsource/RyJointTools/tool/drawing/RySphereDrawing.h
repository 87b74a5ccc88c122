#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleFrame.h"

/// Draws one of the two spheres of a joint parameter: rings that turn it, its body in the style of the settings, cubes
/// that scale it and arrows that move it.
class RySphereDrawing
{
public:
    /// `target`: which sphere; `matrix`: its matrix in parameter space.
    RySphereDrawing(const RyDrawContext &context, RyHandle::Target target, const RyParamSpace &space,
                    const RyMatrix4 &matrix);

    void drawRings() const;
    /// Nothing in the pick pass.
    void drawBody() const;
    /// Cubes and arrows. To be drawn with depth testing off.
    void drawHandles() const;

private:
    bool isSeen() const;
    /// A cube of the space about a place.
    bool isSeen(const RyVec3 &place, float halfSize) const;
    void drawCubes(RyHandle::Kind kind) const;
    void drawCube(const RyHandle &handle) const;
    RyVec3 placeOfCube(const RyHandle &handle) const;
    void drawArrow(const RyHandle &handle) const;

    const RyDrawContext &m_context;
    RyHandle::Target m_target;
    RyHandleFrame m_frame;    // of rings and cubes
    RyHandleFrame m_arrows;   // from the same anchor
    RyMatrix3 m_spaceToWorld; // cubes and cones stand in the axes of the space, however the sphere is turned
};
