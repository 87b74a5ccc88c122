#pragma once

#include <QProxyStyle>

/// Fusion with menus whose grey entries can be pointed at too, so that they can say why they are grey.
class HostStyle : public QProxyStyle
{
    Q_OBJECT
public:
    HostStyle();

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
};
