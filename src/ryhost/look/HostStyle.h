#pragma once

#include <QProxyStyle>

class QStyleOptionSlider;

/// Fusion with plainer frames, with menus whose grey entries can be pointed at too, so that they can say why they are
/// grey, and with sliders that are filled from zero on where they know their zero (`zeroPlace`). A style sheet would do
/// for the frames, but matches its rules with every widget, anew whenever one gets a parent. Icons of tool bars are
/// those of the program: the style's own are black in any look, and reading one loads every format of pictures.
class HostStyle : public QProxyStyle
{
    Q_OBJECT
public:
    HostStyle();

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
    QIcon standardIcon(StandardPixmap which, const QStyleOption *option, const QWidget *widget) const override;
    using QProxyStyle::polish;
    void polish(QWidget *widget) override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;

private:
    void drawDockTitle(const QStyleOption &option, QPainter *painter, const QWidget *widget) const;
    void drawSlider(const QStyleOptionSlider &slider, int zeroPlace, QPainter *painter, const QWidget *widget) const;
};
