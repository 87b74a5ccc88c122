#pragma once

#include <QByteArray>
#include <QString>

/// The first buffer or image that a glTF file of that ending takes from another file; empty for none, and for bytes
/// that cannot be understood, which is for the reader to say. Readers of other formats open a file without the pictures
/// that lie beside it, and name each one that is left out.
QString streamOutsideFile(const QByteArray &bytes, const QString &ending);
