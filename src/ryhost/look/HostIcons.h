#pragma once

#include <QIcon>
#include <QString>

/// The program's icons: drawings with one grey that becomes the palette's text colour. They are drawn anew at every
/// size, in the colours of the moment, so that an icon that is held somewhere follows a change of look by itself.
namespace HostIcons {

/// Empty when there is no such drawing below the home path.
QIcon icon(const QString &name);
bool exists(const QString &name);

} // namespace HostIcons
