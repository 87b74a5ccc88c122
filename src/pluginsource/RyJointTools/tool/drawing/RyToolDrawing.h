#pragma once

#include "pluginsource/RyJointTools/tool/drawing/RyBoundaryDrawing.h"
#include "pluginsource/RyJointTools/tool/drawing/RyKeptBox.h"
#include "pluginsource/RyJointTools/tool/drawing/RyWeightDrawing.h"
#include "pluginsource/RyJointTools/tool/handles/RyBoneFrames.h"
#include "pluginsource/RyJointTools/tool/handles/RyBoneIndex.h"

#include <optional>

class Ry3DViewport;
class RyNode;
struct RyJointState;
struct RyJointToolDisplay;

/// All that the tool draws over the scene for its current node, and what is kept of it: the bones that have ids since
/// the last pick pass, where bones stand and what the node spans as long as the scene stays as it is, where the mesh
/// ends, and the weights of the current parameter.
class RyToolDrawing
{
public:
    /// Of a joint with a current node.
    void draw(Ry3DViewport *viewport, bool pickPass, const RyJointState &joint, const RyJointToolDisplay &display,
              int hoveredId);
    const RyBoneIndex &bones() const { return m_bones; }
    const RyWeightDrawing &weights() const { return m_weights; }

private:
    /// What frames of bones were made for.
    struct FramesKey
    {
        const RyNode *node;
        int boneDrawMode;
        bool withGhosts;
        quint64 sceneRevision;
        bool operator==(const FramesKey &) const = default;
    };
    const RyBoneFrames &framesFor(const RyNode &node, const RyDrawContext &context);

    RyBoneIndex m_bones;
    RyBoneFrames m_frames;
    std::optional<FramesKey> m_framesKey;
    RyBoundaryEdges m_boundaryEdges;
    RyKeptBox m_nodeBox;
    RyWeightDrawing m_weights;
};
