#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

struct aiScene;

/// A foreign file once it is read, and what is known of it besides.
struct RyForeignInput
{
    enum Kind { Fbx, Collada, Bvh };

    const aiScene *scene = nullptr;
    Kind kind = Fbx;
    QString path;
    QSet<QString> joints;               // nodes that the file itself calls joints, where it does
    QHash<QString, double> morphValues; // by names, 0 for others
    QStringList *notes = nullptr;       // for people, a sentence each

    void say(const QString &note) const { notes->append(note); }
};
