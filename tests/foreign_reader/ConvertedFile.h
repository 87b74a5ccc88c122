#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class CharacterScene;
class RyBone;

/// A foreign file, read: the scene that the result opens as, beside an independent reading of it.
class ConvertedFile
{
public:
    /// Without a reason the character is there.
    explicit ConvertedFile(const QString &path, double unit = 0.0);
    ~ConvertedFile();

    QString reason;
    QStringList notes;
    QString glb; // path
    std::unique_ptr<CharacterScene> character;

    RyBone *bone(const QString &name) const;
    QStringList boneNames() const;

private:
    QTemporaryDir m_folder;
};

/// A file with this text, to be read.
class TextFile
{
public:
    TextFile(const QString &name, const QByteArray &text);

private:
    QTemporaryDir m_folder;

public:
    QString path;
};
