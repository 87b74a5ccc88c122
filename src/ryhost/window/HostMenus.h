#pragma once

#include <QHash>
#include <QObject>

class HostWindow;
class QAction;
class QMenu;
class RyMenu;

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
    QAction *add(QMenu *menu, const QString &objectName, const QString &text, const QString &icon,
                 const QKeySequence &keys, const QString &tip);
    void makeFileMenu();
    void makeEditMenu();
    void makeViewMenu();
    void makeHelpMenu();
    void fillRecent();
    void fillToolMenus();
    void fillTools();
    void fillScripts();
    void updateUndo();
    void restorePose();
    void showGuide();

    HostWindow *m_window;
    QMenu *m_edit = nullptr;
    QMenu *m_recent = nullptr;
    QMenu *m_tools = nullptr;
    // The active tool's menu, at its place in the menu bar and under Tools.
    RyMenu *m_toolMenu = nullptr;
    RyMenu *m_toolCommands = nullptr;
    QMenu *m_scripts = nullptr;
    QAction *m_undo = nullptr;
    QAction *m_redo = nullptr;
    QHash<QAction *, QString> m_icons;
};
