#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"

class RyKeptBox;
class RyLegacyJointParam;
class RyNode;
struct RyParamSpace;

/// Draws what a joint parameter is edited with: spheres, the zone of a twist, the zones of a smooth-scale, the angles
/// of a bend, each as far as the parameter applies it and the settings show it.
class RyParamDrawing
{
public:
    RyParamDrawing(const RyDrawContext &context, RyKeptBox &box) : m_context(context), m_box(box) {}

    /// A parameter of the node's joint.
    void draw(const RyLegacyJointParam &param, const RyNode &node) const;

private:
    void drawSpheres(const RyLegacyJointParam &param, const RyParamSpace &space) const;
    void drawZones(const RyLegacyJointParam &param, const RyNode &node, const RyParamSpace &space) const;
    float radiusAcross(const RyNode &node, int axis) const;
    void drawAngles(const RyLegacyJointParam &param, const RyParamSpace &space) const;

    const RyDrawContext &m_context;
    RyKeptBox &m_box;
};
