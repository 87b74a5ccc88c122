#include "pluginsource/RyJointTools/operations/moveParams.h"
#include "pluginsource/RyJointTools/operations/propagateEdits.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

// Setters and slots.

using Display = RyJointToolDisplay;

void RyJointEditorTool::setEditMode(EditMode mode)
{
    m_display.change(&Display::editMode, mode, [&] { emit editModeChanged(mode); });
}

void RyJointEditorTool::setWeightVis(bool onOff)
{
    m_display.change(&Display::weightVis, onOff, [&] { emit optionsChanged(); });
}

void RyJointEditorTool::setAngleVis(bool onOff)
{
    m_display.change(&Display::angleVis, onOff, [&] { emit optionsChanged(); });
}

void RyJointEditorTool::setTwistVis(bool onOff)
{
    m_display.change(&Display::twistVis, onOff, [&] { emit optionsChanged(); });
}

void RyJointEditorTool::setSmoothVis(bool onOff)
{
    m_display.change(&Display::smoothVis, onOff, [&] { emit optionsChanged(); });
}

void RyJointEditorTool::setMatAVis(bool onOff)
{
    m_display.change(&Display::matAVis, onOff, [&] {
        emit matAVisChanged(onOff);
        emit optionsChanged();
    });
}

void RyJointEditorTool::setMatBVis(bool onOff)
{
    m_display.change(&Display::matBVis, onOff, [&] {
        emit matBVisChanged(onOff);
        emit optionsChanged();
    });
}

void RyJointEditorTool::setBoneDrawMode(BoneDrawMode mode)
{
    m_display.change(&Display::boneDrawMode, mode, [&] {
        RyDisplaySettings::write(RyDisplaySettings::boneDrawModeKey, mode);
        emit boneDrawModeChanged(mode);
    });
}

void RyJointEditorTool::setBoneMode(int index)
{
    setBoneDrawMode(BoneDrawMode(EntireFigure - qBound(0, index, int(EntireFigure))));
}

void RyJointEditorTool::setStaticColor(QColor color)
{
    m_display.setColor(RyDisplaySettings::staticColor, color);
}

void RyJointEditorTool::setDynamicColor(QColor color)
{
    m_display.setColor(RyDisplaySettings::dynamicColor, color);
}

void RyJointEditorTool::setSelectedColor(QColor color)
{
    m_display.setColor(RyDisplaySettings::selectedColor, color);
}

void RyJointEditorTool::setBoundaryColor(QColor color)
{
    m_display.setColor(RyDisplaySettings::boundaryColor, color);
}

void RyJointEditorTool::setHandleDrawing(int val)
{
    m_display.setNumber(RyDisplaySettings::handleDrawing, val);
}

void RyJointEditorTool::setSphereDrawing(int val)
{
    m_display.setNumber(RyDisplaySettings::sphereDrawing, val);
}

void RyJointEditorTool::setSphereOpacity(int val)
{
    m_display.setNumber(RyDisplaySettings::sphereOpacity, val);
}

void RyJointEditorTool::setSphereLineDensity(int val)
{
    m_display.setNumber(RyDisplaySettings::sphereLineDensity, val);
}

void RyJointEditorTool::setWeightMapMode(int val)
{
    m_display.setNumber(RyDisplaySettings::weightMapMode, val);
}

void RyJointEditorTool::setWeightOpacity(int val)
{
    m_display.setNumber(RyDisplaySettings::weightOpacity, val);
}

void RyJointEditorTool::setBoundaryStyle(int val)
{
    m_display.setNumber(RyDisplaySettings::boundaryStyle, val);
}

void RyJointEditorTool::setBoneColoringStyle(int val)
{
    m_display.setNumber(RyDisplaySettings::boneColoringStyle, val);
}

void RyJointEditorTool::setGhostBones(bool onOff)
{
    m_display.setFlag(RyDisplaySettings::ghostBones, onOff);
    emit optionsChanged();
}

void RyJointEditorTool::setShowManipulators(bool onOff)
{
    m_display.setFlag(RyDisplaySettings::showManipulators, onOff);
    emit optionsChanged();
}

void RyJointEditorTool::setRestrictRotationAxes(bool onOff)
{
    const QString textBefore = getStatusText();
    m_display.setFlag(RyDisplaySettings::restrictRotationAxes, onOff);
    if (getStatusText() != textBefore)
        emit statusTextChanged();
    emit optionsChanged();
}

void RyJointEditorTool::setDrawMeshBoundaries(bool onOff)
{
    m_display.setFlag(&Display::drawMeshBoundaries, onOff);
    emit optionsChanged();
}

void RyJointEditorTool::setShowBoneHierarchy(bool onOff)
{
    m_display.setFlag(&Display::showBoneHierarchy, onOff);
    emit optionsChanged();
}

void RyJointEditorTool::setPushNeighborAngles(bool onOff)
{
    setMenuOption(&RyToolOptions::pushNeighborAngles, onOff);
}

void RyJointEditorTool::setPropagationEnabled(bool onOff)
{
    m_options.propagationEnabled = onOff;
}

void RyJointEditorTool::setPropagateOrientation(bool onOff)
{
    m_options.propagateOrientation = onOff;
}

void RyJointEditorTool::setMenuOption(bool RyToolOptions::*option, bool onOff)
{
    m_options.*option = onOff;
    emit optionsChanged();
}

void RyJointEditorTool::setPropagateTranslation(bool onOff)
{
    setMenuOption(&RyToolOptions::propagateTranslation, onOff);
}

void RyJointEditorTool::setAutoAlign(bool onOff)
{
    setMenuOption(&RyToolOptions::autoAlign, onOff);
}

void RyJointEditorTool::setAutoSnapEndPoints(bool onOff)
{
    setMenuOption(&RyToolOptions::autoSnapEndPoints, onOff);
}

void RyJointEditorTool::setBoneCreationActive(bool onOff)
{
    m_options.boneCreation = onOff;
    emit statusTextChanged();
    emit optionsChanged();
}

bool RyJointEditorTool::boneCreationActive()
{
    return m_options.boneCreation;
}

void RyJointEditorTool::performTransPropagation(RyNode *node, RyVec3 origin, RyVec3 newOrigin)
{
    m_followUp.propagateOrigin(node, origin, newOrigin);
}

void RyJointEditorTool::performOrientPropagation(RyNode *node, RyQuat delta)
{
    m_followUp.placePoints([&] { ::propagateOrientation(node, delta); });
}

void RyJointEditorTool::performRotPropagation(RyNode *node, int axis, float delta, bool recursive, bool includeGeom)
{
    m_followUp.placePoints([&] { ::propagateRotation(node, axis, delta, recursive, includeGeom); });
}

void RyJointEditorTool::performChildRotPropagation(RyNode *node, int axis, float delta, bool recursive,
                                                   bool includeGeom, RyVec3 &origin)
{
    m_followUp.placePoints([&] { ::propagateChildRotation(node, axis, delta, recursive, includeGeom, origin); });
}

void RyJointEditorTool::performScalePropagation(RyNode *node, int axis, float factor, bool recursive, bool includeGeom)
{
    m_followUp.placePoints([&] { ::propagateScale(node, axis, factor, recursive, includeGeom); });
}

void RyJointEditorTool::performTransPropagation(RyNode *node, int axis, float delta, bool recursive, bool includeGeom)
{
    m_followUp.placePoints([&] { ::propagateTranslation(node, axis, delta, recursive, includeGeom); });
}

void RyJointEditorTool::translateParam(RyLegacyJointParam *param, RyVec3 delta)
{
    ::translateParam(param, delta);
}

void RyJointEditorTool::rotateParam(RyLegacyJointParam *param, RyQuat delta)
{
    ::rotateParam(param, delta);
}

void RyJointEditorTool::propagateParamTranslation(RyNode *node, RyLegacyJointParam *param, float value, int axis)
{
    ::propagateParamTranslation(node, param, value, axis);
}

void RyJointEditorTool::propagateSphereTranslation(RyLegacyJointSphere *sphere, float value, int axis)
{
    ::propagateSphereTranslation(sphere, value, axis);
}

void RyJointEditorTool::updateSelection(RyNode *node)
{
    m_selection.update(node);
}

void RyJointEditorTool::nodeRemoved()
{
    m_selection.forgetNode();
}

void RyJointEditorTool::postSelectionChangeEvent()
{
    m_selection.followLater();
}

void RyJointEditorTool::centerPointChange()
{
    m_followUp.centerPointChanged();
}

void RyJointEditorTool::endPointChange()
{
    m_followUp.endPointChanged();
}

void RyJointEditorTool::dynamicMatrixChange()
{
    m_paramFollowUp.dynamicTurnChanged(sender());
}

void RyJointEditorTool::staticMatrixChange()
{
    m_paramFollowUp.staticTurnChanged(sender());
}

void RyJointEditorTool::removeParamConnections()
{
    m_paramFollowUp.disconnectValues();
}

void RyJointEditorTool::updateParamConnections()
{
    m_paramFollowUp.connectValues();
}

void RyJointEditorTool::validateAngleChange()
{
    m_paramFollowUp.angleChanged(sender());
}

void RyJointEditorTool::setParam(RyLegacyJointParam *param)
{
    m_param.set(param);
}

void RyJointEditorTool::setStaticA(float angle, int)
{
    m_paramFollowUp.setAngle(0, angle);
}

void RyJointEditorTool::setDynamicB(float angle, int)
{
    m_paramFollowUp.setAngle(1, angle);
}

void RyJointEditorTool::setDynamicC(float angle, int)
{
    m_paramFollowUp.setAngle(2, angle);
}

void RyJointEditorTool::setStaticD(float angle, int)
{
    m_paramFollowUp.setAngle(3, angle);
}
