#pragma once

#include <QHash>
#include <QObject>

class HostWindow;
class QAction;
class QMenu;

/// The menus of the window. Those that depend on tools, plug-ins and files are filled when they open.
class HostMenus : public QObject
{
    Q_OBJECT
public:
    explicit HostMenus(HostWindow *window);

    /// Fills what comes from plug-ins and the active tool.
    void refresh();
    void refreshIcons();

private:
    QAction *add(QMenu *menu, const QString &objectName, const QString &text, const QString &icon, const QKeySequence &keys,
                 const QString &tip);
    void makeFileMenu();
    void makeEditMenu();
    void makeViewMenu();
    void makeHelpMenu();
    void fillRecent();
    void fillToolMenu();
    void fillTools();
    void fillScripts();
    void updateUndo();
    void restorePose();
    void runScript(const QString &path);
    void showGuide();

    HostWindow *m_window;
    QMenu *m_recent = nullptr;
    QMenu *m_tools = nullptr;
    QMenu *m_toolOptions = nullptr;
    QMenu *m_scripts = nullptr;
    QAction *m_undo = nullptr;
    QAction *m_redo = nullptr;
    QHash<QAction *, QString> m_icons;
};
