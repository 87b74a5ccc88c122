#pragma once

#include <QObject>

class QMenu;
class RyMainWindow;

/// Runs a script file, or one of those below the home path.
class ScriptsMenu : public QObject
{
    Q_OBJECT
public:
    ScriptsMenu(RyMainWindow *window, QObject *parent);

private:
    void fill();

    RyMainWindow *m_window;
    QMenu *m_menu;
};
