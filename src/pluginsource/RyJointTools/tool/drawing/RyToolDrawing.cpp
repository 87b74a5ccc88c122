#include "pluginsource/RyJointTools/tool/drawing/RyToolDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/RyBoneDrawing.h"
#include "pluginsource/RyJointTools/tool/drawing/RyManipulatorDrawing.h"
#include "pluginsource/RyJointTools/tool/drawing/RyParamDrawing.h"
#include "pluginsource/RyJointTools/tool/drawing/glGeometry.h"
#include "pluginsource/RyJointTools/tool/joint/RyJointState.h"

#include "rycore/scene/RySkeleton.h"

static RyBoneFrames makeFrames(const RyNode &node, const RyJointToolDisplay &display)
{
    RyBoneFrames frames(display.ghostBones);
    switch (display.boneDrawMode) {
    case RyJointToolDisplay::SelectedBone:
        frames.addIfBone(&node);
        break;
    case RyJointToolDisplay::SelectedBoneAndFamily:
        frames.addFamily(&node);
        break;
    case RyJointToolDisplay::EntireFigure:
        frames.addBranches(node.getSkeleton());
        break;
    default:
        break;
    }
    return frames;
}

const RyBoneFrames &RyToolDrawing::framesFor(const RyNode &node, const RyDrawContext &context)
{
    const FramesKey key{&node, context.display.boneDrawMode, context.display.ghostBones, sceneRevision(context)};
    if (key.sceneRevision == 0 || m_framesKey != key) {
        m_frames = makeFrames(node, context.display);
        m_framesKey = key;
    }
    return m_frames;
}

void RyToolDrawing::draw(Ry3DViewport *viewport, bool pickPass, const RyJointState &joint,
                         const RyJointToolDisplay &display, int hoveredId)
{
    const RyNode &node = *joint.node;
    if (pickPass)
        m_bones.refill(node.getSkeleton());
    const RyDrawContext context{pickPass, hoveredId, display, &node, m_bones, viewport};
    RyBoneDrawing(context).draw(framesFor(node, context));
    m_weights.draw(context, joint);
    if (const RyLegacyJointParam *param = joint.param.get())
        RyParamDrawing(context, m_nodeBox).draw(*param, node);
    else
        RyManipulatorDrawing(context).draw(node);
    if (display.drawMeshBoundaries)
        RyBoundaryDrawing(context, m_boundaryEdges).draw(node);
}
