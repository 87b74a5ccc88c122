#pragma once

#include "ryhost/window/HostWindow.h"

#include <QTemporaryDir>

class QAction;
class RyScene;

/// The window of the program on the screen, with the sample figure and settings of its own. Tests inherit from it.
class WindowStage
{
protected:
    enum class Plugins { None, All };
    explicit WindowStage(Plugins plugins = Plugins::None);

    /// False when something of it could not be had.
    [[nodiscard]] bool open();
    /// As above, with the settings that a window left before.
    [[nodiscard]] bool openAgain();
    void close();

    QAction *action(const char *objectName) const;
    QString file(const QString &name) const { return m_folder.filePath(name); }
    /// Lets everything happen that waits for its turn.
    static void settle();

    QTemporaryDir m_folder;
    RyScene *m_scene;
    std::unique_ptr<HostWindow> m_window;

private:
    Plugins m_plugins;
    int m_run = 0;
};
