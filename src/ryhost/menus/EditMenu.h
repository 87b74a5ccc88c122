#pragma once

#include <QObject>

class QAction;
class QMenu;
class RyMainWindow;

/// Undo, restore points, selection, rest pose and preferences.
class EditMenu : public QObject
{
    Q_OBJECT
public:
    EditMenu(RyMainWindow *window, QObject *parent);

    /// Shows the actions of the library that belong here; they come with the plug-ins and go with them.
    void refresh();

private:
    void updateUndo();
    void restorePose();

    RyMainWindow *m_window;
    QMenu *m_menu;
    QAction *m_undo;
    QAction *m_redo;
    QAction *m_preferences; // what stands above them
};
