#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

struct aiScene;
namespace Assimp {
class Importer;
}

/// Reads a file of a foreign format with the importers' library, set so that it leaves nothing out that a rig needs.
class RyForeignFile
{
public:
    RyForeignFile();
    ~RyForeignFile();

    /// Null with a reason. Told how much is done from 0 to 1. `instead`: what is read in the place of the file's bytes,
    /// where that is not empty.
    const aiScene *read(const QString &path, const QByteArray &instead, const std::function<bool(double)> &progress,
                        QString *error);

    /// What the library says for a reason, in words that name a way out.
    static QString explain(const QString &reason);

private:
    std::unique_ptr<Assimp::Importer> m_importer;
};
