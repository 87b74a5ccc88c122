#pragma once

#include <QObject>

class QMenu;
class RyMainWindow;
class RyMenu;

/// The menu of all tools, and that of the active one, which stands in the menu bar and under Tools.
class ToolMenus : public QObject
{
    Q_OBJECT
public:
    ToolMenus(RyMainWindow *window, QObject *parent);

    /// Fills what comes from plug-ins and the active tool.
    void refresh();

private:
    void fillTools();
    void fillActiveTool();

    RyMainWindow *m_window;
    QMenu *m_tools;
    RyMenu *m_activeTool;
    RyMenu *m_commands;
};
