#include "rycore/ui/RyExtendedTabWidget.h"

#include <QEvent>
#include <QScopedValueRollback>
#include <QTabBar>

RyExtendedTabWidget::RyExtendedTabWidget(QWidget *parent) : QTabWidget(parent)
{
    setElideMode(Qt::ElideRight);
    setUsesScrollButtons(true);
    tabBar()->installEventFilter(this);
    connect(this, &QTabWidget::currentChanged, this, [this] {
        if (!m_isSwitching)
            m_kept = nullptr;
    });
}

void RyExtendedTabWidget::setTabEnabled(int index, bool enabled)
{
    const QScopedValueRollback<bool> guard(m_isSwitching, true);
    QWidget *page = widget(index);
    if (!enabled && !m_kept && index == currentIndex())
        m_kept = page;
    QTabWidget::setTabEnabled(index, enabled);
    if (enabled && page && page == m_kept) {
        m_kept = nullptr;
        setCurrentIndex(index);
    }
}

bool RyExtendedTabWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Wheel) {
        event->ignore();
        return true;
    }
    return QTabWidget::eventFilter(watched, event);
}

void RyExtendedTabWidget::tabRemoved(int index)
{
    QTabWidget::tabRemoved(index);
    if (indexOf(m_kept) < 0)
        m_kept = nullptr;
}
