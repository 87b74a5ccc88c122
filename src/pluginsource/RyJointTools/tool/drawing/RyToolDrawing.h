#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyBoundaryDrawing.h"
#include "pluginsource/RyJointTools/tool/handles/RyBoneIndex.h"

class Ry3DViewport;
class RyNode;
struct RyJointToolDisplay;

/// All that the tool draws over the scene for its current node, and what is kept of it: the bones that have ids since
/// the last pick pass, and where the mesh ends.
class RyToolDrawing
{
public:
    void draw(Ry3DViewport *viewport, bool pickPass, RyNode &node, const RyJointToolDisplay &display, int hoveredId);
    const RyBoneIndex &bones() const { return m_bones; }

private:
    RyBoneIndex m_bones;
    RyBoundaryEdges m_boundaryEdges;
};
