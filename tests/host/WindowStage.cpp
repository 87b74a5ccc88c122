#include "host/WindowStage.h"

#include "support/RyTest.h"

#include "rycore/base/RyAppSettings.h"
#include "rycore/scene/RyScene.h"
#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/HostFiles.h"

#include <QAction>

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
    m_window->start();
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
