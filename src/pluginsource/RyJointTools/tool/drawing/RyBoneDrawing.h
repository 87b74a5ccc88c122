#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyDrawContext.h"

#include "rycore/math/RyVec3.h"

class RyBone;

/// Draws bones as octahedra along the first axis of their rotation order, as long as they are; for an aligned bone the
/// tip is the posed end point. With ghosts each bone is drawn at its default place too, and dashed lines join bones to
/// the tips of their parents.
class RyBoneDrawing
{
public:
    explicit RyBoneDrawing(const RyDrawContext &context) : m_context(context) {}

    /// The bone, its parent and its children, as far as they are bones; nothing when the node is none.
    void drawFamily(RyNode *node) const;
    /// All bones that hang below the node through bones only, depth first.
    void drawBranches(const RyNode *node) const;
    void drawIfBone(RyNode *node) const;
    /// Nothing for a hidden bone.
    void drawBone(const RyBone &bone) const;

private:
    enum class Look { Bone, Ghost };
    void drawShape(const RyBone &bone, float length, Look look) const;
    void drawBody(const RyVec3 &tip, const RyVec3 (&waist)[4]) const;
    void drawOutline(const RyVec3 &tip, const RyVec3 (&waist)[4], const int (&axes)[3], float width, float alpha) const;
    void drawParentLink(const RyBone &bone) const;

    const RyDrawContext &m_context;
};
