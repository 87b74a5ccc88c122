#include "demo_session/FirstSession.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/window/HostWindow.h"

#include <QDir>

namespace {

constexpr int EndPointHandle = 2;
constexpr int EndPointX = 44;
const char *const NodeName = "lForearm";
const char *const HoveredNode = "lThigh";

QString text(const RyVec3 &v)
{
    return QStringLiteral("(%1, %2, %3)")
        .arg(double(v.x), 0, 'f', 2)
        .arg(double(v.y), 0, 'f', 2)
        .arg(double(v.z), 0, 'f', 2);
}

} // namespace

void FirstSession::play()
{
    RyNode *node = m_stage.node(QString::fromLatin1(NodeName));
    if (!node)
        return;
    m_stage.picture(QStringLiteral("opened"));
    hoverPart();
    const bool isSelected = m_stage.selectInTree(node);
    m_stage.picture(QStringLiteral("selected"));
    if (!isSelected || !dragEndPoint(node))
        return;
    alignNode();
    undoAndRedo(node);
    const QString saved = m_stage.filePath(QStringLiteral("edited.glb"));
    m_stage.check(m_stage.window().files()->savePath(saved),
                  QStringLiteral("saved %1").arg(QDir::toNativeSeparators(saved)));
    m_stage.picture(QStringLiteral("saved"));
}

void FirstSession::hoverPart()
{
    Ry3DViewport *viewport = m_stage.window().viewport();
    RyNode *part = m_stage.window().getScene()->findNode(QString::fromLatin1(HoveredNode));
    QPointF middle;
    if (!part || !viewport->project((part->getWSPos() + part->getWSEndPoint()) * 0.5f, middle))
        return;
    m_stage.pointer().moveTo(viewport, middle.toPoint() + QPoint(40, 0));
    m_stage.pointer().moveTo(viewport, middle.toPoint());
    m_stage.check(viewport->pickNode(middle.toPoint()) == part,
                  QStringLiteral("under the pointer is %1").arg(part->getLabel()));
    m_stage.picture(QStringLiteral("pointed"));
}

bool FirstSession::dragEndPoint(RyNode *node)
{
    Ry3DViewport *viewport = m_stage.window().viewport();
    viewport->setFocus();
    m_stage.pointer().key(viewport, QStringLiteral("f"));
    PointerDriver::wait(150);
    QPointF tip;
    QPoint handle;
    const bool visible =
        viewport->project(node->getWSEndPoint(), tip) && (m_stage.findHandle(EndPointHandle, tip.toPoint(), handle) ||
                                                          m_stage.findHandle(EndPointX, tip.toPoint(), handle));
    if (!m_stage.check(visible, QStringLiteral("the end point of %1 has a handle on screen").arg(node->getLabel())))
        return false;
    m_stage.pointer().moveTo(viewport, handle - QPoint(30, 60));
    m_stage.pointer().moveTo(viewport, handle);
    m_stage.picture(QStringLiteral("hover"));
    const RyVec3 before = node->getEndPoint();
    const int steps = ryUndoStack()->count();
    m_stage.pointer().drag(viewport, handle, handle + QPoint(24, -58));
    const bool moved = (node->getEndPoint() - before).length() > 0.1f;
    m_stage.check(
        moved,
        QStringLiteral("dragging it moves the end point from %1 to %2").arg(text(before), text(node->getEndPoint())));
    m_stage.check(ryUndoStack()->count() == steps + 1,
                  QStringLiteral("the drag is one undo step, \"%1\"").arg(ryUndoStack()->undoText()));
    m_stage.pointer().moveTo(viewport, handle + QPoint(-120, 120));
    m_stage.picture(QStringLiteral("dragged"));
    return moved;
}

void FirstSession::alignNode()
{
    RyAction *action = m_stage.window().getActionMgr()->findAction(QStringLiteral("RyJEAlignNodeAction"));
    if (!action || !action->isEnabled()) {
        m_stage.check(false, QStringLiteral("a plug-in offers to align this node"));
        return;
    }
    const int steps = ryUndoStack()->index();
    action->trigger();
    m_stage.check(ryUndoStack()->index() == steps + 1,
                  QStringLiteral("Align Node is one undo step, \"%1\"").arg(ryUndoStack()->undoText()));
    m_stage.picture(QStringLiteral("aligned"));
}

void FirstSession::undoAndRedo(RyNode *node)
{
    const RyVec3 after = node->getEndPoint();
    const int done = ryUndoStack()->index();
    for (int i = 0; i < done; ++i)
        m_stage.pointer().key(m_stage.window().viewport(), QStringLiteral("ctrl+z"));
    m_stage.check(ryUndoStack()->index() == 0 && node->getEndPoint() != after,
                  QStringLiteral("Ctrl+Z %1 times brings %2 back to %3")
                      .arg(done)
                      .arg(node->getLabel(), text(node->getEndPoint())));
    m_stage.picture(QStringLiteral("undone"));
    for (int i = 0; i < done; ++i)
        m_stage.pointer().key(m_stage.window().viewport(), QStringLiteral("ctrl+shift+z"));
    m_stage.check(ryUndoStack()->index() == done && node->getEndPoint() == after,
                  QStringLiteral("Ctrl+Shift+Z %1 times brings the edit back").arg(done));
}
