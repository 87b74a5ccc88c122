#pragma once

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
    QStringList *notes = nullptr; // for people, a sentence each

    void say(const QString &note) const { notes->append(note); }
};
