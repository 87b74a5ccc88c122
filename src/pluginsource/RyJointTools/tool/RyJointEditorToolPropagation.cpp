#include "pluginsource/RyJointTools/operations/propagateEdits.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"

#include <QScopedValueRollback>

// Edits carried on to other nodes and parameters. The host has no parametric joints yet: what concerns their parameters
// finds nothing to change.

void RyJointEditorTool::setPropagationEnabled(bool onOff)
{
    m_propagationEnabled = onOff;
}

void RyJointEditorTool::setAutoAlign(bool onOff)
{
    m_autoAlign = onOff;
    emit optionsChanged();
}

void RyJointEditorTool::setAutoSnapEndPoints(bool onOff)
{
    m_autoSnapEndPoints = onOff;
    emit optionsChanged();
}

void RyJointEditorTool::setPropagateTranslation(bool onOff)
{
    m_propagateTranslation = onOff;
    emit optionsChanged();
}

void RyJointEditorTool::setPropagateOrientation(bool onOff)
{
    m_propagateOrientation = onOff;
}

template<typename Edit>
void RyJointEditorTool::placePoints(const Edit &edit)
{
    if (m_placingPoints) {
        edit();
        return;
    }
    m_pointsPlaced = false;
    {
        const QScopedValueRollback<bool> guard(m_placingPoints, true);
        edit();
    }
    if (m_node && m_pointsPlaced)
        followPointChange(m_node);
}

void RyJointEditorTool::performTransPropagation(RyNode *node, RyVec3 origin, RyVec3 newOrigin)
{
    if (!node)
        return;
    placePoints([&] {
        if (!m_drag || !m_drag->propagateOrigin(node, newOrigin))
            ::propagateTranslation(node, newOrigin - origin);
    });
}

void RyJointEditorTool::performOrientPropagation(RyNode *node, RyQuat delta)
{
    ::propagateOrientation(node, delta);
}

void RyJointEditorTool::translateParam(RyLegacyJointParam *, RyVec3) {}

void RyJointEditorTool::rotateParam(RyLegacyJointParam *, RyQuat) {}

void RyJointEditorTool::performRotPropagation(RyNode *node, int axis, float delta, bool recursive, bool)
{
    placePoints([&] { ::propagateRotation(node, axis, delta, recursive); });
}

void RyJointEditorTool::performChildRotPropagation(RyNode *node, int axis, float delta, bool recursive, bool,
                                                   RyVec3 &origin)
{
    placePoints([&] { ::propagateChildRotation(node, axis, delta, recursive, origin); });
}

void RyJointEditorTool::performScalePropagation(RyNode *node, int axis, float factor, bool recursive, bool)
{
    placePoints([&] { ::propagateScale(node, axis, factor, recursive); });
}

void RyJointEditorTool::performTransPropagation(RyNode *node, int axis, float delta, bool recursive, bool)
{
    placePoints([&] { ::propagateTranslation(node, axis, delta, recursive); });
}

void RyJointEditorTool::propagateParamTranslation(RyNode *, RyLegacyJointParam *, float, int) {}

void RyJointEditorTool::propagateSphereTranslation(RyLegacyJointSphere *, float, int) {}

void RyJointEditorTool::setStaticA(float, int) {}

void RyJointEditorTool::setDynamicB(float, int) {}

void RyJointEditorTool::setDynamicC(float, int) {}

void RyJointEditorTool::setStaticD(float, int) {}

void RyJointEditorTool::setBoneCreationActive(bool onOff)
{
    m_boneCreationActive = onOff;
    emit statusTextChanged();
    emit optionsChanged();
}

bool RyJointEditorTool::boneCreationActive()
{
    return m_boneCreationActive;
}
