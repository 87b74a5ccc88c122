#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"
#include "pluginsource/RyJointTools/tool/drags/RyHandleDrag.h"
#include "pluginsource/RyJointTools/tool/drawing/RyBoneDrawing.h"
#include "pluginsource/RyJointTools/tool/drawing/RyBoundaryDrawing.h"
#include "pluginsource/RyJointTools/tool/drawing/RyManipulatorDrawing.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleTable.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/viewport/RyDrawStyle.h"

static constexpr int toolPriority = 29;

RyJointEditorTool::RyJointEditorTool() : RyPickTool(QStringLiteral("Joint Editor"))
{
    setObjectName(QStringLiteral("Joint Editor"));
    qRegisterMetaType<EditMode>("RyJointEditorTool::EditMode");
    qRegisterMetaType<BoneDrawMode>("RyJointEditorTool::BoneDrawMode");
    setAlwaysUseDefaultPickMode(true);
    m_display.readSettings();
    auto *toolFrame = new RyJointEditorToolFrame(RyApp::getInterface(), this);
    m_toolFrame = toolFrame;
    m_dividerBar = toolFrame->getDividerBar();
}

RyJointEditorTool::~RyJointEditorTool()
{
    m_drag.reset();
    // The pane's class goes with this library, whoever its parent is.
    delete m_toolFrame;
}

RyJointEditorToolFrame *RyJointEditorTool::frame() const
{
    return qobject_cast<RyJointEditorToolFrame *>(m_toolFrame.data());
}

QWidget *RyJointEditorTool::getSettingsWidget()
{
    return m_toolFrame;
}

QWidget *RyJointEditorTool::getDividerBar()
{
    return m_dividerBar;
}

int RyJointEditorTool::getToolPriority() const
{
    return toolPriority;
}

QString RyJointEditorTool::getStatusText() const
{
    if (m_dragging && m_node) {
        const RyHandle *handle = RyHandleTable::find(m_hoveredId);
        return handle ? tr("%1; right click or Esc cancels").arg(RyHandleTable::statusText(*handle, m_node->getLabel()))
                      : QString();
    }
    QStringList hints;
    if (const RyHandle *handle = m_node ? RyHandleTable::find(m_hoveredId) : nullptr) {
        hints.append(RyHandleTable::statusText(*handle, m_node->getLabel()));
    } else {
        const RyNode *under = m_node && HandleId::isBone(m_hoveredId)
                                  ? m_bones.boneAt(HandleId::toBoneIndex(m_hoveredId), m_node->getSkeleton())
                                  : getHighlightNode();
        if (under && under != m_node)
            hints.append(RyHandleTable::boneStatusText(under->getLabel(), createsBones()));
    }
    if (createsBones())
        hints.append(tr("Ctrl+click creates a child bone of %1").arg(m_node->getLabel()));
    return hints.join(QStringLiteral("; "));
}

void RyJointEditorTool::draw(Ry3DViewport *viewport, const RyDrawStyle &style)
{
    RyPickTool::draw(viewport, style);
    if (!m_node)
        return;
    const bool pickPass = style.shadeStyle == RyDrawStyle::PickPass;
    const RySkeleton *skeleton = m_node->getSkeleton();
    if (pickPass)
        m_bones.refill(skeleton);

    const RyDrawContext context{pickPass, m_hoveredId, m_display, m_node, m_bones, viewport};
    const RyBoneDrawing boneDrawing(context);
    switch (m_display.boneDrawMode) {
    case SelectedBone:
        boneDrawing.drawIfBone(m_node);
        break;
    case SelectedBoneAndFamily:
        boneDrawing.drawFamily(m_node);
        break;
    case EntireFigure:
        boneDrawing.drawBranches(skeleton);
        break;
    default:
        break;
    }
    RyManipulatorDrawing(context).draw(*m_node);
    if (m_display.drawMeshBoundaries)
        RyBoundaryDrawing(context, m_boundaryEdges).draw(*m_node);
}

void RyJointEditorTool::changeRotationOrder(RyNode *node, const RyRotationOrder &order)
{
    if (!node || node->getRotationOrder() == order)
        return;
    node->setRotationOrder(order);
    emit nodeChanged(m_node);
}
