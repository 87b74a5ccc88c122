// Turning an FBX file into a glTF document, against the importers' library alone reading the same file. The results are
// compared first: all bones, and as many corners as that library gives. Then opening as a whole, as a user waits for it
// (see RyForeignOpening). Arguments: files to read, or --short for few turns of a file that is made here.

#include "RyFbxTube.h"
#include "RyForeignOpening.h"
#include "RyRoundRobin.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "ryforeign/RyForeignRead.h"

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstring>

namespace {

bool readOurs(const QString &path, RyForeignResult &result)
{
    RyForeignRequest request;
    request.path = path;
    return ryReadForeign(request, result);
}

const aiScene *readPeer(Assimp::Importer &importer, const QString &path)
{
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_REMOVE_EMPTY_BONES, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    return importer.ReadFile(QFile::encodeName(path).constData(), 0);
}

/// All bones are there, and the polygons have as many corners.
bool isSame(const QString &path)
{
    RyForeignResult result;
    Assimp::Importer importer;
    const aiScene *peer = readPeer(importer, path);
    if (!readOurs(path, result) || !peer) {
        std::printf("%s%s\n", qPrintable(result.error), importer.GetErrorString());
        return false;
    }
    size_t bones = 0, triangles = 0, ours = 0, joints = 0;
    for (unsigned m = 0; m < peer->mNumMeshes; ++m) {
        bones = std::max(bones, size_t(peer->mMeshes[m]->mNumBones));
        for (unsigned f = 0; f < peer->mMeshes[m]->mNumFaces; ++f)
            triangles += std::max(2u, peer->mMeshes[m]->mFaces[f].mNumIndices) - 2;
    }
    QTemporaryDir folder;
    const QString glb = folder.filePath(QStringLiteral("ours.glb"));
    QFile file(glb);
    if (!file.open(QIODevice::WriteOnly) || file.write(result.glb) != result.glb.size())
        return false;
    file.close();
    QString error;
    const std::unique_ptr<RyGltfDocument> document = RyGltfDocument::read(glb, &error);
    for (size_t m = 0; document && m < document->model().meshes.size(); ++m) {
        for (const RyGltfPrimitive &primitive : document->model().meshes[m].primitives)
            ours += document->model().accessors[size_t(primitive.indices)].count / 3;
    }
    for (size_t s = 0; document && s < document->model().skins.size(); ++s)
        joints = std::max(joints, document->model().skins[s].joints.size());
    std::printf("%s: %zu joints, %zu triangles, %d bytes of glTF\n", qPrintable(path.section(QLatin1Char('/'), -1)),
                joints, ours, result.glb.size());
    return joints >= bones && ours == triangles;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 3 && RyForeignOpening::isWay(argv[1]))
        return RyForeignOpening::runWay(argv[1], QFile::decodeName(argv[2]));
    const bool isShort = argc > 1 && std::strcmp(argv[1], "--short") == 0;
    QTemporaryDir folder;
    QStringList paths = application.arguments().mid(isShort ? 2 : 1);
    if (paths.isEmpty()) {
        paths.append(folder.filePath(QStringLiteral("tube.fbx")));
        QFile file(paths.front());
        if (!file.open(QIODevice::WriteOnly))
            return 1;
        file.write(isShort ? ryFbxTube(100, 50, 20) : ryFbxTube(500, 200, 100));
    }
    for (const QString &path : paths) {
        if (!isSame(path))
            return 1;
        RyRoundRobin rounds;
        rounds.add("the importers' library alone", [&] {
            Assimp::Importer importer;
            readPeer(importer, path);
        });
        rounds.add("into a glTF document", [&] {
            RyForeignResult result;
            readOurs(path, result);
        });
        rounds.run(isShort ? 1 : 9, 20.0);
        rounds.print();
        if (!RyForeignOpening::compare(path, isShort ? 1 : 9))
            return 1;
    }
    return 0;
}
