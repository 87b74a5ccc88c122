#include "ryhost/look/HostStyle.h"

#include <QPainter>
#include <QStyleOption>

HostStyle::HostStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

int HostStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                         QStyleHintReturn *returned) const
{
    if (hint == SH_Menu_AllowActiveAndDisabled)
        return 1;
    return QProxyStyle::styleHint(hint, option, widget, returned);
}

void HostStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                            const QWidget *widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
    const bool isGreyCurrent =
        element == CE_MenuItem && option->state.testFlag(State_Selected) && !option->state.testFlag(State_Enabled);
    if (!isGreyCurrent)
        return;
    // Fusion marks the current entry only where it is enabled.
    painter->save();
    painter->setPen(option->palette.color(QPalette::Disabled, QPalette::Text));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(option->rect.adjusted(1, 1, -2, -2));
    painter->restore();
}
