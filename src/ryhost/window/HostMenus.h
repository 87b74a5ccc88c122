#pragma once

#include <QObject>

class EditMenu;
class HostWindow;
class ToolMenus;

/// The menu bar of the window.
class HostMenus : public QObject
{
    Q_OBJECT
public:
    explicit HostMenus(HostWindow *window);

    /// Fills what comes from plug-ins and the active tool.
    void refresh();

private:
    void makeViewMenu();
    void addKeysOfTheSceneList();
    void makeHelpMenu();

    HostWindow *m_window;
    EditMenu *m_edit;
    ToolMenus *m_tools;
};
