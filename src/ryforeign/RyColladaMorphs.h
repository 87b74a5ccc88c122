#pragma once

#include <QByteArray>
#include <QStringList>

/// The importers' library cannot resolve what a Collada file says of morphs: it refuses the whole file or leaves the
/// mesh out. Without the morphs it reads both.
class RyColladaMorphs
{
public:
    explicit RyColladaMorphs(const QString &path);

    QStringList meshes; // ids of those that lose their morphs; empty where the file has none
    QByteArray text;    // of the file without morphs, where it has some
};
