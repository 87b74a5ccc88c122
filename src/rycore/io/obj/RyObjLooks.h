#pragma once

#include "rycore/io/obj/RyMtlFile.h"
#include "rycore/scene/RyMeshPart.h"

#include <QHash>
#include <QSet>
#include <QStringList>

/// How the materials of an OBJ file look: their libraries and pictures, of which only those at or below the file's own
/// folder are read. What is missing or refused is told and left out.
class RyObjLooks
{
public:
    /// `folder`: of the OBJ file.
    RyObjLooks(const QString &folder, QStringList *messages) : m_folder(folder), m_messages(messages) {}

    /// What an mtllib line names: one file, or several with blanks between them.
    void readLibraries(const QString &names);
    RyMaterialLook lookOf(const QString &material);
    /// All files that were read, from the folder on.
    const QStringList &files() const { return m_files; }

private:
    struct Picture
    {
        QByteArray bytes;
        QImage image;
    };
    struct Known
    {
        RyMtlFile::Material material;
        QString folder; // of its library, from the OBJ file's folder on; empty or with a slash at its end
    };
    /// The bytes of a file; its messages begin with `what`.
    bool readFile(const QString &name, const QString &what, QByteArray &bytes);
    bool isThere(const QString &name) const;
    void readLibrary(const QString &name);
    Picture picture(const Known &known);
    void say(const QString &message);

    QString m_folder;
    QStringList *m_messages;
    int m_messageCount = 0;
    QStringList m_files;
    QSet<QString> m_libraries; // names that were tried
    QHash<QString, Known> m_materials;
    QHash<QString, Picture> m_pictures; // by their names
};
