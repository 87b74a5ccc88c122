#include "pluginsource/RyJointTools/operations/propagateEdits.h"
#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"

#include <QScopedValueRollback>

// Edits carried on to other nodes and parameters. Parameters come from parametric joints, which no node of the host
// has: what concerns them finds nothing to change.

void RyJointEditorTool::setPropagationEnabled(bool onOff)
{
    m_propagationEnabled = onOff;
}

void RyJointEditorTool::setPropagateTranslation(bool onOff)
{
    m_propagateTranslation = onOff;
}

void RyJointEditorTool::setPropagateOrientation(bool onOff)
{
    m_propagateOrientation = onOff;
}

void RyJointEditorTool::performTransPropagation(RyNode *node, RyVec3 origin, RyVec3 newOrigin)
{
    if (!node)
        return;
    const QScopedValueRollback<bool> guard(m_placingEndPoint, true);
    if (!m_drag || !m_drag->propagateOrigin(node, newOrigin))
        ::propagateTranslation(node, newOrigin - origin);
}

void RyJointEditorTool::performOrientPropagation(RyNode *node, RyQuat delta)
{
    ::propagateOrientation(node, delta);
}

void RyJointEditorTool::translateParam(RyLegacyJointParam *, RyVec3) {}

void RyJointEditorTool::rotateParam(RyLegacyJointParam *, RyQuat) {}

void RyJointEditorTool::performRotPropagation(RyNode *node, int axis, float delta, bool recursive, bool)
{
    ::propagateRotation(node, axis, delta, recursive);
}

void RyJointEditorTool::performChildRotPropagation(RyNode *node, int axis, float delta, bool recursive, bool,
                                                   RyVec3 &origin)
{
    ::propagateChildRotation(node, axis, delta, recursive, origin);
}

void RyJointEditorTool::performScalePropagation(RyNode *node, int axis, float factor, bool recursive, bool)
{
    ::propagateScale(node, axis, factor, recursive);
}

void RyJointEditorTool::performTransPropagation(RyNode *node, int axis, float delta, bool recursive, bool)
{
    const QScopedValueRollback<bool> guard(m_placingEndPoint, true);
    ::propagateTranslation(node, axis, delta, recursive);
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
}

bool RyJointEditorTool::boneCreationActive()
{
    return m_boneCreationActive;
}
