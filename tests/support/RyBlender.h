#pragma once

#include <QStringList>

/// Another program that reads the files that are written here, where it is installed.
namespace RyBlender {

/// Why nothing can be asked of it; empty where it is there with what its reader of glTF needs.
QString whyNot();

/// Without a window and without anybody's settings. False when it ended badly or took longer than eight minutes;
/// `output` is the end of what it said, errors too.
[[nodiscard]] bool run(const QStringList &arguments, QString *output);

} // namespace RyBlender
