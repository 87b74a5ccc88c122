#pragma once

#include "ryhost/window/HostWindow.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>

class QAction;
class RyNode;
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

    RyNode *forearm() const;
    /// One undo step, "Bend".
    void bend(float degrees = 20) const;
    /// Whether the window would take the files that somebody drags over it from another program.
    [[nodiscard]] bool wouldTake(const QStringList &paths) const;
    /// Drags them there and lets go of them, whatever the window says to that.
    void drop(const QStringList &paths) const;
    /// Uses the next dialog of that kind once it is open.
    template<class Dialog>
    void withDialog(const std::function<void(Dialog *)> &use) const
    {
        auto *timer = new QTimer(m_window.get());
        QObject::connect(timer, &QTimer::timeout, timer, [timer, use] {
            if (auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget())) {
                timer->deleteLater();
                timer->stop();
                use(dialog);
            }
        });
        timer->start(5);
    }

    QTemporaryDir m_folder;
    RyScene *m_scene;
    std::unique_ptr<HostWindow> m_window;

private:
    Plugins m_plugins;
    int m_run = 0;
};
