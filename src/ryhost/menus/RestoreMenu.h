#pragma once

#include <QObject>

class RyMainWindow;
class QAction;
class QMenu;

/// The part of the Edit menu that goes further back than one step: "Restore to before" the last command that undo does
/// not take back, all restore points, and the undo history. Takes care that points are taken while the window is there.
class RestoreMenu : public QObject
{
    Q_OBJECT
public:
    /// Adds its entries at the end of `menu`.
    RestoreMenu(QMenu *menu, RyMainWindow *window, QObject *parent);
    /// Drops all points: what they hold may come from plug-ins.
    ~RestoreMenu() override;

private:
    void fillPoints();
    void fillHistory();
    void restore(int index);
    /// Tells how to take back what was just done.
    void announce();

    RyMainWindow *m_window;
    QAction *m_latest;
    QMenu *m_points;
    QMenu *m_history;
};
