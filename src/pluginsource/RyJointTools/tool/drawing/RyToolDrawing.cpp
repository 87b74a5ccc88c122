#include "pluginsource/RyJointTools/tool/drawing/RyToolDrawing.h"

#include "pluginsource/RyJointTools/tool/drawing/RyBoneDrawing.h"
#include "pluginsource/RyJointTools/tool/drawing/RyManipulatorDrawing.h"

#include "rycore/scene/RySkeleton.h"

static void drawBones(const RyDrawContext &context, RyNode &node)
{
    const RyBoneDrawing drawing(context);
    switch (context.display.boneDrawMode) {
    case RyJointToolDisplay::SelectedBone:
        drawing.drawIfBone(&node);
        break;
    case RyJointToolDisplay::SelectedBoneAndFamily:
        drawing.drawFamily(&node);
        break;
    case RyJointToolDisplay::EntireFigure:
        drawing.drawBranches(node.getSkeleton());
        break;
    default:
        break;
    }
}

void RyToolDrawing::draw(Ry3DViewport *viewport, bool pickPass, RyNode &node, const RyJointToolDisplay &display,
                         int hoveredId)
{
    if (pickPass)
        m_bones.refill(node.getSkeleton());
    const RyDrawContext context{pickPass, hoveredId, display, &node, m_bones, viewport};
    drawBones(context, node);
    RyManipulatorDrawing(context).draw(node);
    if (display.drawMeshBoundaries)
        RyBoundaryDrawing(context, m_boundaryEdges).draw(node);
}
