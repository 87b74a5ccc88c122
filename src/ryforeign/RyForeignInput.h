#pragma once

#include "ryforeign/RyForeignPivot.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <vector>

struct aiScene;

/// A foreign file once it is read, and what is known of it besides.
struct RyForeignInput
{
    enum Kind { Fbx, Collada, Bvh };

    /// What shows a morph: how far at the start, and through how many shapes, of which the last is the whole morph.
    struct Channel
    {
        double value = 0.0;
        int shapes = 1;
    };
    using Channels = std::vector<Channel>;

    const aiScene *scene = nullptr;
    Kind kind = Fbx;
    QString path;
    QSet<QString> joints;                             // nodes that the file itself calls joints, where it does
    QHash<QString, std::vector<Channels>> channelsOf; // by nodes, of each of their geometries, where it is known
    bool isText = false;                              // a form of which less is known
    QHash<QString, RyForeignPivot> pivotOf;           // by nodes, what the importers' library knows nothing of
    QHash<QString, RyForeignScaling> scalingOf;       // by nodes, likewise
    QHash<QString, QString> nameOf;                   // of nodes, where the importers' library got others
    QStringList *notes = nullptr;                     // for people, a sentence each

    void say(const QString &note) const { notes->append(note); }
};
