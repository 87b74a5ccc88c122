#include "ryhost/menus/RestoreMenu.h"

#include "rycore/app/RyMainWindow.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "ryhost/commands/menuText.h"

#include <QLocale>
#include <QMenu>

#include <algorithm>

namespace {

constexpr int MostPoints = 20;
constexpr int StepsAbout = 25; // shown before and after the present one

} // namespace

RestoreMenu::RestoreMenu(QMenu *menu, RyMainWindow *window, QObject *parent) : QObject(parent), m_window(window)
{
    m_history = menu->addMenu(tr("&History"));
    m_history->setObjectName(QStringLiteral("HistoryMenu"));
    m_latest = menu->addAction(QString());
    m_latest->setObjectName(QStringLiteral("EditRestoreLatest"));
    m_points = menu->addMenu(tr("R&estore Points"));
    m_points->setObjectName(QStringLiteral("RestoreMenu"));
    m_points->setToolTipsVisible(true);
    RyRestorePoints *points = ryRestorePoints();
    points->setMost(MostPoints);
    connect(m_history, &QMenu::aboutToShow, this, &RestoreMenu::fillHistory);
    connect(m_latest, &QAction::triggered, this, [this] { restore(0); });
    connect(points, &RyRestorePoints::changed, this, &RestoreMenu::fillPoints);
    connect(points, &RyRestorePoints::taken, this, &RestoreMenu::announce);
    fillPoints();
    fillHistory();
}

RestoreMenu::~RestoreMenu()
{
    if (RyRestorePoints *points = ryRestorePoints()) {
        disconnect(points, nullptr, this, nullptr);
        points->clear();
        points->setMost(0);
    }
}

void RestoreMenu::fillPoints()
{
    const RyRestorePoints *points = ryRestorePoints();
    m_points->clear();
    for (int i = 0; i < points->count(); ++i) {
        QAction *action = m_points->addAction(menuTextOf(points->text(i)));
        action->setObjectName(QStringLiteral("RestorePoint%1").arg(i));
        const QString tip = tr("The scene as it was at %1, with its undo history")
                                .arg(QLocale().toString(points->time(i).time(), QLocale::LongFormat));
        action->setToolTip(tip);
        action->setStatusTip(tip);
        // Queued: going back fills this menu anew, and the action would be gone while it is triggered.
        connect(
            action, &QAction::triggered, this, [this, i] { restore(i); }, Qt::QueuedConnection);
    }
    m_points->menuAction()->setVisible(points->count() > 1);
    m_latest->setVisible(points->count() > 0);
    m_latest->setText(menuTextOf(points->text(0)));
    m_latest->setStatusTip(tr("Bring back the scene and its undo history; this can be taken back too"));
}

void RestoreMenu::fillHistory()
{
    const RyUndoStack *stack = ryUndoStack();
    m_history->clear();
    const int first = std::max(0, stack->index() - StepsAbout);
    const int last = std::min(stack->count(), stack->index() + StepsAbout);
    for (int done = first; done <= last; ++done) {
        QAction *action = m_history->addAction(done == 0 ? tr("Beginning") : menuTextOf(stack->caption(done - 1)));
        action->setObjectName(QStringLiteral("HistoryStep%1").arg(done));
        action->setStatusTip(done == 0 ? tr("Undo all steps") : tr("Undo or redo up to this step"));
        action->setCheckable(true);
        action->setChecked(done == stack->index());
        connect(
            action, &QAction::triggered, this, [done] { ryUndoStack()->goTo(done); }, Qt::QueuedConnection);
    }
}

void RestoreMenu::restore(int index)
{
    if (!ryRestorePoints()->restore(index)) {
        m_window->showMessage(tr("Finish what the mouse is dragging first."));
        return;
    }
    m_window->showMessage(tr("The scene is as it was. Edit > %1 takes that back.").arg(ryRestorePoints()->text(0)));
}

void RestoreMenu::announce()
{
    m_window->showMessage(tr("Undo does not take this back; Edit > %1 does.").arg(ryRestorePoints()->text(0)));
}
