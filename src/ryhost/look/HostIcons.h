#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

/// The program's icons: drawings with one grey that becomes the theme's text colour.
namespace HostIcons {

/// Empty when there is no such drawing below the home path.
QIcon icon(const QString &name);
bool exists(const QString &name);
/// For icons made from now on.
void setColor(const QColor &color);

} // namespace HostIcons
