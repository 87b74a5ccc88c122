#pragma once

#include <QByteArray>
#include <QString>

/// The ending of the format that the first bytes of a file are of: glb, gltf or obj; empty when they do not tell.
QString streamFormatOf(const QByteArray &bytes);

/// The first buffer or image that a glTF file of that ending takes from another file; empty for none, and for bytes
/// that cannot be understood, which is for the reader to say.
QString streamOutsideFile(const QByteArray &bytes, const QString &ending);
