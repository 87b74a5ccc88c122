#include "demo_session/DemoStage.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyPlainText.h"
#include "rycore/viewport/Ry3DViewport.h"
#include "ryhost/panes/SceneModel.h"
#include "ryhost/panes/ScenePane.h"
#include "ryhost/window/HostWindow.h"

#include <QAbstractProxyModel>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int SearchPixels = 40;

QAction *findEntry(const QList<QAction *> &actions, const QString &text)
{
    const auto found = std::find_if(actions.begin(), actions.end(), [&](const QAction *action) {
        return action->isVisible() && ryPlainText(action->text()).startsWith(text);
    });
    return found == actions.end() ? nullptr : *found;
}

} // namespace

DemoStage::DemoStage(HostWindow &window, const QString &folder)
    : m_window(window), m_folder(QDir(folder).absolutePath())
{
    QDir().mkpath(m_folder);
}

QString DemoStage::filePath(const QString &name) const
{
    return QDir(m_folder).filePath(name);
}

bool DemoStage::check(bool ok, const QString &what)
{
    std::printf("%s %s\n", ok ? "ok    " : "FAILED", what.toLocal8Bit().constData());
    std::fflush(stdout);
    m_failures += ok ? 0 : 1;
    return ok;
}

void DemoStage::picture(const QString &name)
{
    PointerDriver::wait(250);
    for (int i = 0; i < 100 && !m_window.viewport()->isRefined(); ++i)
        PointerDriver::wait(50);
    const QString path = filePath(QStringLiteral("%1-%2.png").arg(++m_pictures).arg(name));
    const QRect place = m_window.frameGeometry();
    // From the screen, as a person sees it: a widget's own picture leaves the viewport out.
    QPixmap picture =
        QGuiApplication::primaryScreen()->grabWindow(0, place.x(), place.y(), place.width(), place.height());
    check(picture.save(path), QStringLiteral("picture %1").arg(QDir::toNativeSeparators(path)));
}

RyNode *DemoStage::node(const QString &name)
{
    RyNode *node = m_window.getScene()->findNode(name);
    if (!node)
        check(false, QStringLiteral("the scene has a node %1").arg(name));
    return node;
}

bool DemoStage::selectInTree(RyNode *node)
{
    QTreeView *tree = m_window.scenePane()->tree();
    auto *proxy = qobject_cast<QAbstractProxyModel *>(tree->model());
    const QModelIndex index = proxy->mapFromSource(m_window.scenePane()->model()->indexOf(node));
    tree->scrollTo(index, QAbstractItemView::PositionAtCenter);
    PointerDriver::wait(50);
    m_pointer.click(tree->viewport(), tree->visualRect(index).center());
    return check(m_window.getScene()->getPrimarySelection() == node,
                 QStringLiteral("a click in the scene list selects %1").arg(node->getLabel()));
}

bool DemoStage::typeInto(const QString &objectName, const QString &text)
{
    auto *place = m_window.findChild<QWidget *>(objectName);
    auto *field = qobject_cast<QLineEdit *>(place);
    if (place && !field)
        field = place->findChild<QLineEdit *>();
    if (!check(field && field->isVisible() && field->isEnabled(),
               QStringLiteral("there is a field %1").arg(objectName)))
        return false;
    m_pointer.click(field, field->rect().center());
    m_pointer.key(field, QStringLiteral("ctrl+a"));
    m_pointer.type(field, text);
    m_pointer.key(field, QStringLiteral("Return"));
    return true;
}

bool DemoStage::findHandle(int id, const QPoint &near, QPoint &found) const
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

bool DemoStage::chooseFromMenu(const QStringList &texts, const QString &pictureName)
{
    QMenuBar *bar = m_window.menuBar();
    QAction *entry = findEntry(bar->actions(), texts.value(0));
    QWidget *place = bar;
    QRect area = entry ? bar->actionGeometry(entry) : QRect();
    for (int i = 1; entry && entry->menu() && i < texts.size(); ++i) {
        m_pointer.click(place, area.center());
        PointerDriver::wait(150);
        QMenu *menu = entry->menu();
        entry = menu->isVisible() ? findEntry(menu->actions(), texts.at(i)) : nullptr;
        place = menu;
        area = entry ? menu->actionGeometry(entry) : QRect();
    }
    const bool enabled = entry && entry->isEnabled() && !entry->menu();
    if (!check(enabled, QStringLiteral("the menus offer %1").arg(texts.join(QStringLiteral(" > "))))) {
        for (int i = 0; i < texts.size(); ++i)
            m_pointer.key(&m_window, QStringLiteral("Escape"));
        return false;
    }
    if (!pictureName.isEmpty()) {
        // An entry lights up when the mouse moves over it, not where it came to stand under the mouse.
        m_pointer.moveTo(place, area.center() - QPoint(area.width() / 4, 0));
        m_pointer.moveTo(place, area.center());
        picture(pictureName);
    }
    m_pointer.click(place, area.center());
    PointerDriver::wait(100);
    return true;
}

bool DemoStage::withDialog(const std::function<void()> &open, const std::function<void(QWidget *dialog)> &use)
{
    // The dialog's own event loop runs inside of what opens it, so what is to be done with it waits for a timer.
    bool used = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        const QPointer<QWidget> dialog = QApplication::activeModalWidget();
        if (!dialog || !dialog->isVisible())
            return;
        watch.stop();
        PointerDriver::wait(200);
        use(dialog);
        used = true;
        if (auto *left = qobject_cast<QDialog *>(dialog.data()); left && left->isVisible()) {
            check(false, QStringLiteral("the dialog \"%1\" closes").arg(left->windowTitle()));
            left->reject();
        }
    });
    watch.start(50);
    open();
    for (int waited = 0; !used && watch.isActive() && waited < 3000; waited += 50)
        PointerDriver::wait(50);
    return check(used, QStringLiteral("a dialog opens"));
}

QString DemoStage::saveAs(const QString &name)
{
    const QString path = filePath(name);
    QFile::remove(path);
    const bool asked = withDialog(
        [this] {
            chooseFromMenu({QStringLiteral("File"), QStringLiteral("Save As")});
        },
        [&](QWidget *dialog) {
            m_pointer.key(dialog, QStringLiteral("ctrl+a"));
            m_pointer.type(dialog, path);
            m_pointer.key(dialog, QStringLiteral("Return"));
        });
    const bool saved =
        asked && check(QFileInfo::exists(path), QStringLiteral("saved %1").arg(QDir::toNativeSeparators(path)));
    return saved ? path : QString();
}
