#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

struct aiScene;

/// The importers' library cannot resolve what a Collada file says of morphs: it refuses the whole file or leaves the
/// mesh out. Without the morphs it reads both, and they are put on the meshes that it made.
class RyColladaMorphs
{
public:
    explicit RyColladaMorphs(const QString &path);

    QByteArray text; // of the file without morphs, where it has some

    struct Losses
    {
        QStringList meshes; // ids of those that stay without their morphs, or without some of them
        bool hasClips = false;
    };
    /// `scene`: what the library made of the text.
    Losses addTo(const aiScene &scene) const;

private:
    QString m_path;
};
