#include "ryhost/DemoSession.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyAction.h"
#include "rycore/ui/RyActionMgr.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/HostFiles.h"
#include "ryhost/HostWindow.h"
#include "ryhost/SceneModel.h"
#include "ryhost/ScenePane.h"

#include <QAbstractProxyModel>
#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QTreeView>

#include <cstdio>

namespace {

constexpr int EndPointHandle = 2;
constexpr int EndPointX = 44;
constexpr int SearchPixels = 40;
const char *const NodeName = "lForearm";
const char *const HoveredNode = "lThigh";

QString text(const RyVec3 &v)
{
    return QStringLiteral("(%1, %2, %3)").arg(double(v.x), 0, 'f', 2).arg(double(v.y), 0, 'f', 2).arg(double(v.z), 0, 'f', 2);
}

} // namespace

DemoSession::DemoSession(HostWindow &window, const QString &folder) : m_window(window), m_folder(QDir(folder).absolutePath())
{
    QDir().mkpath(m_folder);
}

bool DemoSession::check(bool ok, const QString &what)
{
    std::printf("%s %s\n", ok ? "ok    " : "FAILED", what.toLocal8Bit().constData());
    std::fflush(stdout);
    m_failures += ok ? 0 : 1;
    return ok;
}

void DemoSession::picture(const QString &name)
{
    PointerDriver::wait(250);
    const QString path = QStringLiteral("%1/%2-%3.png").arg(m_folder).arg(++m_pictures).arg(name);
    const QRect place = m_window.frameGeometry();
    // From the screen, as a person sees it: a widget's own picture leaves the viewport out.
    QPixmap picture = QGuiApplication::primaryScreen()->grabWindow(0, place.x(), place.y(), place.width(), place.height());
    check(picture.save(path), QStringLiteral("picture %1").arg(QDir::toNativeSeparators(path)));
}

int DemoSession::run()
{
    m_window.move(0, 0);
    m_window.resize(QGuiApplication::primaryScreen()->availableGeometry().size().boundedTo(QSize(1440, 900)));
    PointerDriver::wait(1200);
    std::printf("pointer: %s\n", m_pointer.usesDisplayServer() ? "the display server's" : "events at the window");
    RyNode *node = m_window.getScene()->findNode(QString::fromLatin1(NodeName));
    if (!check(node != nullptr, QStringLiteral("the file has a node %1").arg(QLatin1String(NodeName))))
        return 1;
    picture(QStringLiteral("opened"));
    hoverPart();
    if (selectInTree(node) && dragEndPoint(node)) {
        alignNode();
        undoAndRedo(node);
        const QString saved = QDir(m_folder).filePath(QStringLiteral("edited.glb"));
        check(m_window.files()->savePath(saved), QStringLiteral("saved %1").arg(QDir::toNativeSeparators(saved)));
        picture(QStringLiteral("saved"));
    }
    std::printf("%s\n", m_failures == 0 ? "The session went as it should." : "The session did not go as it should.");
    return m_failures == 0 ? 0 : 1;
}

bool DemoSession::selectInTree(RyNode *node)
{
    QTreeView *tree = m_window.scenePane()->tree();
    auto *proxy = qobject_cast<QAbstractProxyModel *>(tree->model());
    const QModelIndex index = proxy->mapFromSource(m_window.scenePane()->model()->indexOf(node));
    tree->scrollTo(index, QAbstractItemView::PositionAtCenter);
    PointerDriver::wait(50);
    m_pointer.click(tree->viewport(), tree->visualRect(index).center());
    const bool selected = m_window.getScene()->getPrimarySelection() == node;
    check(selected, QStringLiteral("a click in the scene list selects %1").arg(node->getLabel()));
    picture(QStringLiteral("selected"));
    return selected;
}

void DemoSession::hoverPart()
{
    Ry3DViewport *viewport = m_window.viewport();
    RyNode *part = m_window.getScene()->findNode(QString::fromLatin1(HoveredNode));
    QPointF middle;
    if (!part || !viewport->project((part->getWSPos() + part->getWSEndPoint()) * 0.5f, middle))
        return;
    m_pointer.moveTo(viewport, middle.toPoint() + QPoint(40, 0));
    m_pointer.moveTo(viewport, middle.toPoint());
    check(viewport->pickNode(middle.toPoint()) == part, QStringLiteral("under the pointer is %1").arg(part->getLabel()));
    picture(QStringLiteral("pointed"));
}

bool DemoSession::findHandle(int id, const QPoint &near, QPoint &found) const
{
    for (int reach = 0; reach <= SearchPixels; ++reach) {
        for (int dy = -reach; dy <= reach; ++dy) {
            for (int dx = -reach; dx <= reach; ++dx) {
                if (qMax(qAbs(dx), qAbs(dy)) != reach)
                    continue;
                found = near + QPoint(dx, dy);
                if (m_window.viewport()->pickOnGizmo(found) == id)
                    return true;
            }
        }
    }
    return false;
}

bool DemoSession::dragEndPoint(RyNode *node)
{
    Ry3DViewport *viewport = m_window.viewport();
    viewport->setFocus();
    m_pointer.key(viewport, QStringLiteral("f"));
    PointerDriver::wait(150);
    QPointF tip;
    QPoint handle;
    const bool visible = viewport->project(node->getWSEndPoint(), tip)
                         && (findHandle(EndPointHandle, tip.toPoint(), handle) || findHandle(EndPointX, tip.toPoint(), handle));
    if (!check(visible, QStringLiteral("the end point of %1 has a handle on screen").arg(node->getLabel())))
        return false;
    m_pointer.moveTo(viewport, handle - QPoint(30, 60));
    m_pointer.moveTo(viewport, handle);
    picture(QStringLiteral("hover"));
    const RyVec3 before = node->getEndPoint();
    const int steps = ryUndoStack()->count();
    m_pointer.drag(viewport, handle, handle + QPoint(24, -58));
    const bool moved = (node->getEndPoint() - before).length() > 0.1f;
    check(moved, QStringLiteral("dragging it moves the end point from %1 to %2").arg(text(before), text(node->getEndPoint())));
    check(ryUndoStack()->count() == steps + 1, QStringLiteral("the drag is one undo step, \"%1\"").arg(ryUndoStack()->undoText()));
    m_pointer.moveTo(viewport, handle + QPoint(-120, 120));
    picture(QStringLiteral("dragged"));
    return moved;
}

void DemoSession::alignNode()
{
    RyAction *action = m_window.getActionMgr()->findAction(QStringLiteral("RyJEAlignNodeAction"));
    if (!action || !action->isEnabled()) {
        std::printf("       no plug-in offers to align this node\n");
        return;
    }
    const int steps = ryUndoStack()->index();
    action->trigger();
    check(ryUndoStack()->index() == steps + 1, QStringLiteral("Align Node is one undo step, \"%1\"").arg(ryUndoStack()->undoText()));
    picture(QStringLiteral("aligned"));
}

void DemoSession::undoAndRedo(RyNode *node)
{
    const RyVec3 after = node->getEndPoint();
    const int done = ryUndoStack()->index();
    for (int i = 0; i < done; ++i)
        m_pointer.key(m_window.viewport(), QStringLiteral("ctrl+z"));
    check(ryUndoStack()->index() == 0 && node->getEndPoint() != after,
          QStringLiteral("Ctrl+Z %1 times brings %2 back to %3").arg(done).arg(node->getLabel(), text(node->getEndPoint())));
    picture(QStringLiteral("undone"));
    for (int i = 0; i < done; ++i)
        m_pointer.key(m_window.viewport(), QStringLiteral("ctrl+shift+z"));
    check(ryUndoStack()->index() == done && node->getEndPoint() == after,
          QStringLiteral("Ctrl+Shift+Z %1 times brings the edit back").arg(done));
}
