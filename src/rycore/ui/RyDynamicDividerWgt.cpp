#include "rycore/ui/RyDynamicDividerWgt.h"

#include "rycore/ui/RyDividerBar.h"

#include <QEvent>
#include <QVBoxLayout>

#include <algorithm>

RyDynamicDividerWgt::RyDynamicDividerWgt(QWidget *first, QWidget *second, QWidget *parent)
    : QWidget(parent), m_first(first), m_second(second), m_bar(new RyDividerBar(this)), m_layout(new QVBoxLayout(this))
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    m_layout->addWidget(m_first);
    m_layout->addWidget(m_bar);
    m_layout->addWidget(m_second);
    connect(m_bar, &QAbstractButton::toggled, this, &RyDynamicDividerWgt::fold);
    connect(m_bar, &RyDividerBar::moved, this, &RyDynamicDividerWgt::moveBar);
    fold(false);
}

void RyDynamicDividerWgt::setResizeType(int type)
{
    m_resizeType = type == FirstKeeps ? FirstKeeps : SecondKeeps;
    arrange();
}

void RyDynamicDividerWgt::setToggleDirection(int direction)
{
    m_toggleDirection = direction == FoldsUp ? FoldsUp : FoldsDown;
    m_bar->setFoldsDown(m_toggleDirection == FoldsDown);
    fold(isFolded());
}

void RyDynamicDividerWgt::setPreferredExtent(int extent)
{
    m_extent = extent;
    arrange();
}

int RyDynamicDividerWgt::getExtent() const
{
    return std::max(m_extent, keeper()->minimumSizeHint().height());
}

void RyDynamicDividerWgt::setBarMovesEnabled(bool onOff)
{
    m_bar->setMovesEnabled(onOff);
}

bool RyDynamicDividerWgt::isFolded() const
{
    return m_bar->isChecked();
}

void RyDynamicDividerWgt::setFolded(bool folded)
{
    m_bar->setChecked(folded);
}

void RyDynamicDividerWgt::fold(bool folded)
{
    const bool foldsDown = m_toggleDirection == FoldsDown;
    m_first->setVisible(foldsDown || !folded);
    m_second->setVisible(!foldsDown || !folded);
    const QString text = folded ? tr("Show what is folded away") : tr("Fold away");
    m_bar->setAccessibleName(text);
    m_bar->setToolTip(text);
    arrange();
}

void RyDynamicDividerWgt::moveBar(int pixels)
{
    if (isFolded())
        return;
    const int wanted = getExtent() + (m_resizeType == FirstKeeps ? pixels : -pixels);
    const QWidget *other = m_resizeType == FirstKeeps ? m_second : m_first;
    const int room = height() - m_bar->height() - other->minimumSizeHint().height();
    setPreferredExtent(std::max(std::min(wanted, room), keeper()->minimumSizeHint().height()));
}

void RyDynamicDividerWgt::arrange()
{
    // When what takes the rest is folded away, what is left takes all of it.
    const bool keeps = !(isFolded() && keeper() == (m_toggleDirection == FoldsDown ? m_first : m_second));
    for (QWidget *widget : {m_first, m_second}) {
        const bool fixed = widget == keeper() && keeps;
        widget->setMinimumHeight(fixed ? getExtent() : 0);
        widget->setMaximumHeight(fixed ? getExtent() : QWIDGETSIZE_MAX);
        // A layout that is told its stretch asks to be laid out again, though nothing of it is new.
        const int stretch = widget == keeper() ? 0 : 1;
        if (m_layout->stretch(m_layout->indexOf(widget)) != stretch)
            m_layout->setStretchFactor(widget, stretch);
    }
}

bool RyDynamicDividerWgt::event(QEvent *event)
{
    // What the contents need may have changed, with the font for one.
    if (event->type() == QEvent::LayoutRequest)
        arrange();
    return QWidget::event(event);
}
