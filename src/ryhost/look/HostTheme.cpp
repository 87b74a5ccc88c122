#include "ryhost/look/HostTheme.h"

#include "ryhost/look/HostStyle.h"

#include <QApplication>
#include <QPalette>
#include <QToolTip>

namespace {

QPalette makePalette(bool dark)
{
    const QColor window = dark ? QColor(50, 52, 56) : QColor(236, 237, 239);
    const QColor base = dark ? QColor(37, 39, 42) : QColor(252, 252, 253);
    const QColor text = dark ? QColor(216, 219, 224) : QColor(38, 41, 46);
    const QColor faint = dark ? QColor(128, 132, 139) : QColor(140, 144, 150);
    const QColor button = dark ? QColor(62, 65, 70) : QColor(226, 228, 231);
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, dark ? QColor(43, 45, 48) : QColor(244, 245, 247));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Button, button);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, dark ? QColor(30, 31, 34) : QColor(255, 255, 250));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Highlight, HostTheme::accent());
    palette.setColor(QPalette::HighlightedText, QColor(24, 20, 14));
    palette.setColor(QPalette::Link, HostTheme::accent());
    palette.setColor(QPalette::Light, dark ? QColor(72, 75, 80) : Qt::white);
    palette.setColor(QPalette::Midlight, dark ? QColor(60, 63, 67) : QColor(244, 245, 246));
    palette.setColor(QPalette::Mid, dark ? QColor(40, 42, 45) : QColor(190, 193, 198));
    palette.setColor(QPalette::Dark, dark ? QColor(30, 32, 34) : QColor(160, 164, 170));
    palette.setColor(QPalette::Shadow, dark ? QColor(16, 17, 18) : QColor(110, 114, 120));
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faint);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, faint);
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, palette.color(QPalette::HighlightedText));
    return palette;
}

} // namespace

QColor HostTheme::accent()
{
    return QColor(232, 147, 58);
}

void HostTheme::apply(bool dark)
{
    QApplication::setStyle(new HostStyle);
    const QPalette palette = makePalette(dark);
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
}

RyRenderOptions HostTheme::viewportOptions(bool dark, RyRenderOptions options)
{
    options.backgroundTop = dark ? QColor(88, 93, 101) : QColor(214, 219, 225);
    options.backgroundBottom = dark ? QColor(44, 46, 50) : QColor(168, 173, 180);
    options.grid = dark ? QColor(160, 166, 175) : QColor(92, 97, 104);
    options.accent = accent();
    return options;
}
