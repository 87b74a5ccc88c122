#pragma once

#include "rycore/io/foreign/RyForeignReader.h"
#include "ryforeign/RyFbxObjects.h"

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

    /// Null with a reason. Told how much is done from 0 to 1. `renamings`: names that are read in the place of others.
    const aiScene *read(const QString &path, const std::vector<RyFbxObjects::Renaming> &renamings,
                        const std::function<bool(double)> &progress, QString *error);

    /// What the library says for a reason, in words that name a way out.
    static QString explain(const QString &reason);

private:
    const aiScene *readRenamed(const QString &path, const std::vector<RyFbxObjects::Renaming> &renamings);

    std::unique_ptr<Assimp::Importer> m_importer;
};
