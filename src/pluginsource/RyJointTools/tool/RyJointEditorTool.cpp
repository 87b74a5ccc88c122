#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"

#include "pluginsource/RyJointTools/operations/changeRotationOrder.h"
#include "pluginsource/RyJointTools/operations/listMirrorPairs.h"
#include "pluginsource/RyJointTools/operations/mirrorNode.h"
#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"
#include "pluginsource/RyJointTools/tool/RyJointToolMenus.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/scene/RyScene.h"
#include "rycore/viewport/RyDrawStyle.h"

// The host's tool interface. The slots stand in RyJointEditorToolSlots.cpp.

static constexpr int toolPriority = 29;

RyJointEditorTool::RyJointEditorTool()
    : RyPickTool(QStringLiteral("Joint Editor")),
      m_pointer(RyToolPointer::Surroundings{*this, m_joint, m_options, m_display.values(), m_drawing.bones(),
                                            [this](int index, float radians, const RyBendAngles::Values &start) {
                                                m_paramFollowUp.setAngle(index, radians, start);
                                            }})
{
    setObjectName(QStringLiteral("Joint Editor"));
    qRegisterMetaType<EditMode>("RyJointEditorTool::EditMode");
    qRegisterMetaType<BoneDrawMode>("RyJointEditorTool::BoneDrawMode");
    setAlwaysUseDefaultPickMode(true);
    auto *toolFrame = new RyJointEditorToolFrame(RyApp::getInterface(), this);
    m_toolFrame = toolFrame;
    m_dividerBar = toolFrame->getDividerBar();
}

RyJointEditorTool::~RyJointEditorTool()
{
    m_pointer.abandon();
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

void RyJointEditorTool::addToolMenuItems(RyMenu *menu)
{
    fillToolMenu(*menu);
}

void RyJointEditorTool::fillToolOptionsMenu(RyActionMenu *menu)
{
    fillContextMenu(*menu);
}

QString RyJointEditorTool::getStatusText() const
{
    return m_pointer.statusText();
}

void RyJointEditorTool::activated()
{
    m_selection.start();
    RyPickTool::activated();
}

void RyJointEditorTool::deactivated()
{
    m_selection.stop();
    RyPickTool::deactivated();
}

bool RyJointEditorTool::event(QEvent *event)
{
    return m_selection.takeEvent(*event) || QObject::event(event);
}

void RyJointEditorTool::draw(Ry3DViewport *viewport, const RyDrawStyle &style)
{
    RyPickTool::draw(viewport, style);
    if (m_joint.node)
        m_drawing.draw(viewport, style.shadeStyle == RyDrawStyle::PickPass, m_joint, display(), hoveredId());
}

/// Bones and handles are drawn in their order; the patches of a highlight and the spheres of a parameter hide each
/// other.
bool RyJointEditorTool::needsDepth() const
{
    return getHighlightNode() || m_joint.param.get();
}

void RyJointEditorTool::mouseOver(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    m_pointer.hover(viewport, event, modifier);
}

void RyJointEditorTool::mouseLeave(Ry3DViewport *viewport)
{
    m_pointer.leave(viewport);
}

bool RyJointEditorTool::mousePress(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    return m_pointer.press(viewport, event, modifier);
}

bool RyJointEditorTool::mouseMove(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    return m_pointer.move(viewport, event, modifier);
}

bool RyJointEditorTool::mouseRelease(Ry3DViewport *viewport, QMouseEvent *event, RyViewMouseModifier modifier)
{
    return m_pointer.release(viewport, event, modifier);
}

void RyJointEditorTool::cancelDrag()
{
    m_pointer.cancel();
}

void RyJointEditorTool::finishDrag()
{
    m_pointer.endPress();
}

void RyJointEditorTool::changeRotationOrder(RyNode *node, const RyRotationOrder &order)
{
    const OrderChange change = ::changeRotationOrder(node, order);
    if (change == OrderChange::None)
        return;
    if (node == currentNode())
        emit nodeChanged(node);
    RyMainWindow *window = RyApp::getInterface();
    if (window && change == OrderChange::AnglesKept)
        window->showMessage(tr("The bend angles stay as they were. \"Fit Zones to Bone\" turns them along the bone."));
}

bool RyJointEditorTool::mirrorNode(RyNode *source, RyNode *target, int axis)
{
    const RyRotationOrder before = target ? target->getRotationOrder() : RyRotationOrder();
    const MirrorResult result = ::mirrorNode(source, target, axis);
    if (target && target == currentNode() && target->getRotationOrder() != before)
        emit nodeChanged(currentNode());
    return result == MirrorResult::Done;
}

QVariantMap RyJointEditorTool::mirrorPairs(int axis) const
{
    return listMirrorPairs(ryScene()->getPrimarySelection(), axis);
}
