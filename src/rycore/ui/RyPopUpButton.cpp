#include "rycore/ui/RyPopUpButton.h"

#include "rycore/ui/RyPopUpWidget.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QEvent>

#include <algorithm>

RyPopUpButton::RyPopUpButton(const QString &popUpName, QWidget *parent) : RyStyledButton(parent), m_popupName(popUpName)
{
    setShowArrow(true);
    setElideText(true);
    setMinimumWidthText(QStringLiteral("mmmmmmmm"));
    setFixedHeight(RyStandardMetrics::DropDownHeight);
    connect(this, &QAbstractButton::clicked, this, &RyPopUpButton::showPopup);
}

void RyPopUpButton::showPopup()
{
    if (m_popup) {
        hidePopup();
        return;
    }
    m_popup = new RyPopUpWidget(this);
    m_popup->setObjectName(m_popupName);
    m_popup->setFixedSize(std::max(width(), RyStandardMetrics::PopUpWidth), RyStandardMetrics::PopUpHeight);
    QWidget *focus = fillPopup(m_popup);
    connect(m_popup, &RyPopUpWidget::closed, this, &RyPopUpButton::hidePopup);
    m_popup->positionPopUp(QRect(mapToGlobal(QPoint(0, 0)), size()));
    m_popup->open(focus);
    popupOpened();
}

void RyPopUpButton::hidePopup()
{
    if (!m_popup)
        return;
    RyPopUpWidget *popup = m_popup;
    m_popup.clear();
    popup->disconnect(this);
    popup->hide();
    popup->deleteLater();
}

RyPopUpWidget *RyPopUpButton::popup() const
{
    return m_popup;
}

void RyPopUpButton::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        hidePopup();
    RyStyledButton::changeEvent(event);
}

void RyPopUpButton::hideEvent(QHideEvent *event)
{
    hidePopup();
    RyStyledButton::hideEvent(event);
}
