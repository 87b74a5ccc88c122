#include "ryhost/look/HostStyle.h"

#include "ryhost/look/HostIcons.h"

#include <QGuiApplication>
#include <QPainter>
#include <QStyleOption>
#include <QTreeView>
#include <QVariant>
#include <QWidget>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int DockTitleMargin = 5;
constexpr int DockTitleIndent = 8;

bool isMirrored(const QStyleOption *option)
{
    return (option ? option->direction : QGuiApplication::layoutDirection()) == Qt::RightToLeft;
}

} // namespace

HostStyle::HostStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

int HostStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                         QStyleHintReturn *returned) const
{
    if (hint == SH_Menu_AllowActiveAndDisabled)
        return 1;
    return QProxyStyle::styleHint(hint, option, widget, returned);
}

QIcon HostStyle::standardIcon(StandardPixmap which, const QStyleOption *option, const QWidget *widget) const
{
    switch (which) {
    case SP_ToolBarHorizontalExtensionButton:
        return HostIcons::icon(isMirrored(option) ? QStringLiteral("more-left") : QStringLiteral("more-right"));
    case SP_ToolBarVerticalExtensionButton:
        return HostIcons::icon(QStringLiteral("more-down"));
    default:
        return QProxyStyle::standardIcon(which, option, widget);
    }
}

void HostStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    if (auto *tree = qobject_cast<QTreeView *>(widget))
        tree->setFrameShape(QFrame::NoFrame);
}

int HostStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_DockWidgetTitleMargin:
        return DockTitleMargin;
    case PM_DockWidgetSeparatorExtent:
    case PM_ToolTipLabelFrameWidth:
        return 4;
    case PM_ToolBarFrameWidth:
    case PM_ToolBarItemSpacing:
        return 3;
    case PM_ToolBarItemMargin:
        return 0;
    default:
        break;
    }
    return QProxyStyle::pixelMetric(metric, option, widget);
}

void HostStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                              const QWidget *widget) const
{
    switch (element) {
    case PE_PanelTipLabel:
        painter->save();
        painter->setPen(option->palette.color(QPalette::Light));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        painter->restore();
        return;
    case PE_IndicatorDockWidgetResizeHandle:
        painter->fillRect(option->rect, option->palette.color(QPalette::Mid));
        return;
    case PE_FrameStatusBarItem:
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void HostStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                            const QWidget *widget) const
{
    switch (element) {
    case CE_DockWidgetTitle:
        drawDockTitle(*option, painter, widget);
        return;
    case CE_ToolBar:
        return;
    default:
        break;
    }
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

void HostStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                   const QWidget *widget) const
{
    const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option);
    const QVariant zero = widget ? widget->property("zeroPlace") : QVariant();
    if (control == CC_Slider && slider && zero.isValid() && slider->orientation == Qt::Horizontal)
        drawSlider(*slider, zero.toInt(), painter, widget);
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

void HostStyle::drawDockTitle(const QStyleOption &option, QPainter *painter, const QWidget *widget) const
{
    painter->fillRect(option.rect, option.palette.color(QPalette::Midlight));
    const auto *dock = qstyleoption_cast<const QStyleOptionDockWidget *>(&option);
    if (!dock)
        return;
    const QRect place = subElementRect(SE_DockWidgetTitleBarText, &option, widget)
                            .adjusted(DockTitleIndent, DockTitleMargin, -DockTitleIndent, -DockTitleMargin);
    drawItemText(painter, place, Qt::AlignLeft | Qt::TextShowMnemonic, dock->palette,
                 dock->state.testFlag(State_Enabled),
                 painter->fontMetrics().elidedText(dock->title, Qt::ElideRight, place.width()), QPalette::WindowText);
}

void HostStyle::drawSlider(const QStyleOptionSlider &slider, int zeroPlace, QPainter *painter,
                           const QWidget *widget) const
{
    // Fusion fills a groove from its beginning to the handle: one whose handle is at the beginning stays empty.
    QStyleOptionSlider groove = slider;
    groove.subControls = SC_SliderGroove;
    groove.sliderPosition = groove.sliderValue = slider.minimum;
    QProxyStyle::drawComplexControl(CC_Slider, &groove, painter, widget);

    const auto middleAt = [&](int place) {
        QStyleOptionSlider at = slider;
        at.sliderPosition = at.sliderValue = place;
        return subControlRect(CC_Slider, &at, SC_SliderHandle, widget).center().x();
    };
    const int zero = middleAt(std::min(std::max(zeroPlace, slider.minimum), slider.maximum));
    const int here = middleAt(slider.sliderPosition);
    if (zero != here) {
        constexpr int Height = 4;
        const QRect whole = subControlRect(CC_Slider, &slider, SC_SliderGroove, widget);
        painter->fillRect(QRect(QPoint(std::min(zero, here), whole.center().y() - Height / 2 + 1),
                                QSize(std::abs(here - zero), Height)),
                          slider.palette.brush(QPalette::Highlight));
    }

    QStyleOptionSlider rest = slider;
    rest.subControls &= ~SC_SliderGroove;
    QProxyStyle::drawComplexControl(CC_Slider, &rest, painter, widget);
}
