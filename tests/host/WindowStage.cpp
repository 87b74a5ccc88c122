#include "host/WindowStage.h"

#include "support/RyTest.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "ryhost/commands/HostFiles.h"

#include <QAction>
#include <QDropEvent>
#include <QMimeData>

WindowStage::WindowStage(Plugins plugins) : m_scene(ryScene()), m_plugins(plugins) {}

bool WindowStage::open()
{
    RyAppSettings::setSettingsPath(file(QStringLiteral("settings-%1").arg(++m_run)));
    return openAgain();
}

bool WindowStage::openAgain()
{
    qputenv("RYHOST_HOME", QByteArray(RY_SOURCE_DIR) + "/resources");
    qputenv("RYHOST_PLUGIN_PATH",
            m_plugins == Plugins::All ? QByteArray(RY_BINARY_DIR) + "/plugins" : m_folder.path().toLocal8Bit());
    m_window = std::make_unique<HostWindow>(m_scene);
    m_window->show();
    if (!m_folder.isValid() || !QTest::qWaitForWindowExposed(m_window.get()))
        return false;
    // There is no window manager that would do it.
    QApplication::setActiveWindow(m_window.get());
    const bool isOpen = m_window->files()->openSample();
    settle();
    return isOpen;
}

void WindowStage::close()
{
    m_window.reset();
    m_scene->clear();
    ryUndoStack()->clearAll();
    ryUndoStack()->setClean();
}

QAction *WindowStage::action(const char *objectName) const
{
    return m_window->findChild<QAction *>(QString::fromLatin1(objectName));
}

void WindowStage::settle()
{
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents();
        QTest::qWait(2);
    }
}

RyNode *WindowStage::forearm() const
{
    return m_scene->findNode(QStringLiteral("lForearm"));
}

void WindowStage::bend(float degrees) const
{
    RyUndoStackHold hold;
    forearm()->getZRotControl()->setValue(degrees);
    hold.accept(QStringLiteral("Bend"));
}

static std::unique_ptr<QMimeData> dataOf(const QStringList &paths)
{
    auto data = std::make_unique<QMimeData>();
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    data->setUrls(urls);
    return data;
}

bool WindowStage::wouldTake(const QStringList &paths) const
{
    const auto data = dataOf(paths);
    QDragEnterEvent event(QPoint(200, 200), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    event.ignore();
    QCoreApplication::sendEvent(m_window.get(), &event);
    return event.isAccepted();
}

void WindowStage::drop(const QStringList &paths) const
{
    static_cast<void>(wouldTake(paths));
    const auto data = dataOf(paths);
    QDropEvent event(QPointF(200, 200), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_window.get(), &event);
}
