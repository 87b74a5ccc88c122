#pragma once

#include <QProxyStyle>

class QStyleOptionSlider;

/// Fusion with menus whose grey entries can be pointed at too, so that they can say why they are grey, and with sliders
/// that are filled from zero on where they know their zero (`zeroPlace`).
class HostStyle : public QProxyStyle
{
    Q_OBJECT
public:
    HostStyle();

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;

private:
    void drawSlider(const QStyleOptionSlider &slider, int zeroPlace, QPainter *painter, const QWidget *widget) const;
};
