#pragma once

#include <QByteArray>
#include <QString>

/// What a file is by its first bytes, whatever it is called.
namespace RyForeignContent {

constexpr int Needed = 4096; // bytes from the start of the file

/// The ending that files of this content have: fbx, dae, bvh, glb or gltf; empty where nobody can tell.
QString endingOf(const QByteArray &start);

/// Why a file of that ending is not what its name says, and what helps; empty where it is, or where nobody can tell.
QString findMismatch(const QString &ending, const QByteArray &start);

} // namespace RyForeignContent
