#pragma once

#include "pointer/PointerDriver.h"

#include <QtTest/QtTest>

#include <QAction>
#include <QMenu>
#include <QMenuBar>

/// Walks the menus of a window with the pointer.
class MenuPointer
{
public:
    explicit MenuPointer(PointerDriver &pointer) : m_pointer(pointer) {}

    /// Clicks from the menu bar to the entry of an action. False when there is none that could be clicked.
    bool choose(QMenuBar *bar, const QString &className)
    {
        const QList<QAction *> way = wayTo(bar->actions(), className);
        if (way.isEmpty() || !way.last()->isEnabled())
            return false;
        m_pointer.click(bar, bar->actionGeometry(way.first()).center());
        for (int i = 1; i < way.size(); ++i) {
            QMenu *menu = way[i - 1]->menu();
            if (!QTest::qWaitFor([menu] { return menu->isVisible(); }))
                return false;
            PointerDriver::wait(50);
            m_pointer.click(menu, menu->actionGeometry(way[i]).center());
        }
        return true;
    }

private:
    static QList<QAction *> wayTo(const QList<QAction *> &entries, const QString &className)
    {
        for (QAction *entry : entries) {
            if (className == QLatin1String(entry->metaObject()->className()))
                return {entry};
            if (!entry->menu() || !entry->isVisible())
                continue;
            const QList<QAction *> way = wayTo(entry->menu()->actions(), className);
            if (!way.isEmpty())
                return QList<QAction *>{entry} + way;
        }
        return {};
    }

    PointerDriver &m_pointer;
};
