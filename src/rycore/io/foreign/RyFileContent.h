#pragma once

#include <QByteArray>
#include <QString>

/// What a file is by its first bytes, whatever it is called.
namespace RyFileContent {

constexpr int Needed = 4096; // bytes from the start of the file

/// The ending that files of this content have, or most likely have: fbx, dae, bvh, glb, gltf or obj; empty where
/// nobody can tell.
QString endingOf(const QByteArray &start);

/// Why a file of that ending is not what its name says, and what helps; empty where it is, or where nobody is sure.
QString findMismatch(const QString &ending, const QByteArray &start);

} // namespace RyFileContent
