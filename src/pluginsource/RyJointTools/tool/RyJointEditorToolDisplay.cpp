#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

// What the tool shows: setters of the display and their settings.

namespace {

int inRange(int value, int low, int high, int otherwise)
{
    return value < low || value > high ? otherwise : value;
}

} // namespace

template<typename T>
bool RyJointEditorTool::changeDisplay(T RyJointToolDisplay::*value, T newValue)
{
    if (m_display.*value == newValue)
        return false;
    m_display.*value = newValue;
    return true;
}

void RyJointEditorTool::setEditMode(EditMode mode)
{
    if (m_editMode == mode)
        return;
    m_editMode = mode;
    emit editModeChanged(mode);
    drawnDataChanged();
}

void RyJointEditorTool::setWeightVis(bool onOff)
{
    if (changeDisplay(&RyJointToolDisplay::weightVis, onOff))
        drawnDataChanged();
}

void RyJointEditorTool::setAngleVis(bool onOff)
{
    if (changeDisplay(&RyJointToolDisplay::angleVis, onOff))
        drawnDataChanged();
}

void RyJointEditorTool::setTwistVis(bool onOff)
{
    if (changeDisplay(&RyJointToolDisplay::twistVis, onOff))
        drawnDataChanged();
}

void RyJointEditorTool::setSmoothVis(bool onOff)
{
    if (changeDisplay(&RyJointToolDisplay::smoothVis, onOff))
        drawnDataChanged();
}

void RyJointEditorTool::setMatAVis(bool onOff)
{
    if (!changeDisplay(&RyJointToolDisplay::matAVis, onOff))
        return;
    emit matAVisChanged(onOff);
    drawnDataChanged();
}

void RyJointEditorTool::setMatBVis(bool onOff)
{
    if (!changeDisplay(&RyJointToolDisplay::matBVis, onOff))
        return;
    emit matBVisChanged(onOff);
    drawnDataChanged();
}

void RyJointEditorTool::setBoneDrawMode(BoneDrawMode mode)
{
    if (!changeDisplay(&RyJointToolDisplay::boneDrawMode, int(mode)))
        return;
    RyJointToolSettings::writeInt(RyJointToolSettings::boneVis, mode);
    emit boneDrawModeChanged(mode);
    drawnDataChanged();
}

void RyJointEditorTool::setBoneMode(int index)
{
    setBoneDrawMode(BoneDrawMode(EntireFigure - index));
}

void RyJointEditorTool::setStaticColor(QColor color)
{
    m_display.staticColor = color;
    RyJointToolSettings::writeColor(RyJointToolSettings::staticColor, color);
    drawnDataChanged();
}

void RyJointEditorTool::setDynamicColor(QColor color)
{
    m_display.dynamicColor = color;
    RyJointToolSettings::writeColor(RyJointToolSettings::dynamicColor, color);
    drawnDataChanged();
}

void RyJointEditorTool::setSelectedColor(QColor color)
{
    m_display.selectedColor = color;
    RyJointToolSettings::writeColor(RyJointToolSettings::selectedColor, color);
    drawnDataChanged();
}

void RyJointEditorTool::setBoundaryColor(QColor color)
{
    m_display.boundaryColor = color;
    RyJointToolSettings::writeColor(RyJointToolSettings::boundaryColor, color);
    drawnDataChanged();
}

void RyJointEditorTool::setHandleDrawing(int val)
{
    m_display.handleDrawing = inRange(val, 0, 2, 0);
    RyJointToolSettings::writeInt(RyJointToolSettings::drawHandles, m_display.handleDrawing);
    drawnDataChanged();
}

void RyJointEditorTool::setSphereDrawing(int val)
{
    m_display.sphereDrawing = inRange(val, 0, 2, 0);
    RyJointToolSettings::writeInt(RyJointToolSettings::sphereDrawing, m_display.sphereDrawing);
    drawnDataChanged();
}

void RyJointEditorTool::setSphereOpacity(int val)
{
    m_display.sphereOpacity = inRange(val, 0, 255, 50);
    RyJointToolSettings::writeInt(RyJointToolSettings::sphereOpacity, m_display.sphereOpacity);
    drawnDataChanged();
}

void RyJointEditorTool::setSphereLineDensity(int val)
{
    m_display.sphereLineDensity = qBound(1, val, 360);
    RyJointToolSettings::writeInt(RyJointToolSettings::sphereDensity, m_display.sphereLineDensity);
    drawnDataChanged();
}

void RyJointEditorTool::setWeightMapMode(int val)
{
    m_display.weightMapMode = inRange(val, 0, 2, 1);
    RyJointToolSettings::writeInt(RyJointToolSettings::weightMapMode, m_display.weightMapMode);
    drawnDataChanged();
}

void RyJointEditorTool::setWeightOpacity(int val)
{
    m_display.weightOpacity = inRange(val, 0, 255, 160);
    RyJointToolSettings::writeInt(RyJointToolSettings::weightOpacity, m_display.weightOpacity);
    drawnDataChanged();
}

void RyJointEditorTool::setDrawMeshBoundaries(bool onOff)
{
    m_display.drawMeshBoundaries = onOff;
    drawnDataChanged();
}

void RyJointEditorTool::setGhostBones(bool onOff)
{
    RyJointToolSettings::writeBool(RyJointToolSettings::ghostBones, onOff);
    m_display.ghostBones = onOff;
    drawnDataChanged();
}

void RyJointEditorTool::setShowManipulators(bool onOff)
{
    RyJointToolSettings::writeBool(RyJointToolSettings::showManipulators, onOff);
    m_display.showManipulators = onOff;
    drawnDataChanged();
}

void RyJointEditorTool::setBoundaryStyle(int val)
{
    m_display.boundaryStyle = inRange(val, 0, 1, 1);
    RyJointToolSettings::writeInt(RyJointToolSettings::boundaryStyle, m_display.boundaryStyle);
    drawnDataChanged();
}

void RyJointEditorTool::setPushNeighborAngles(bool onOff)
{
    m_pushNeighborAngles = onOff;
}

void RyJointEditorTool::setShowBoneHierarchy(bool onOff)
{
    m_display.showBoneHierarchy = onOff;
    drawnDataChanged();
}

void RyJointEditorTool::setBoneColoringStyle(int val)
{
    m_display.boneColoringStyle = inRange(val, 0, 1, 1);
    RyJointToolSettings::writeInt(RyJointToolSettings::boneColoringStyle, m_display.boneColoringStyle);
    drawnDataChanged();
}

void RyJointEditorTool::setRestrictRotationAxes(bool onOff)
{
    m_display.restrictRotationAxes = onOff;
    RyJointToolSettings::writeInt(RyJointToolSettings::axisHobble, onOff ? 1 : 0);
}
