// Turning an FBX file into a glTF document, against the importers' library alone reading the same file. The results are
// compared first: all bones, and as many corners as that library gives. Arguments: files to read, or --short for few
// turns of a file that is made here.

#include "RyRoundRobin.h"

#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "ryforeign/RyForeignRead.h"

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

/// An FBX file in text form: a tube of quads, 1.7 metres high, that a chain of bones moves, two for each vertex.
QByteArray tube(int columns, int rows, int bones)
{
    QByteArray points, polygons;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const double angle = 6.283185307 * column / columns;
            points += QByteArray::number(20 * std::cos(angle)) + ',' + QByteArray::number(170.0 * row / (rows - 1)) +
                      ',' + QByteArray::number(20 * std::sin(angle)) + ',';
        }
    }
    for (int row = 0; row + 1 < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const int next = (column + 1) % columns;
            for (const int corner : {row * columns + column, row * columns + next, (row + 1) * columns + next})
                polygons += QByteArray::number(corner) + ',';
            polygons += QByteArray::number(-1 - ((row + 1) * columns + column)) + ',';
        }
    }
    points.chop(1);
    polygons.chop(1);
    QByteArray objects =
        "Geometry: 1, \"Geometry::Tube\", \"Mesh\" {\nVertices: *" + QByteArray::number(3 * rows * columns) +
        " {\na: " + points + "\n}\nPolygonVertexIndex: *" + QByteArray::number(4 * (rows - 1) * columns) +
        " {\na: " + polygons +
        "\n}\n}\nModel: 2, \"Model::Tube\", \"Mesh\" {\n}\nDeformer: 3, \"Deformer::\", \"Skin\" {\n}\n";
    QByteArray links = "C: \"OO\",2,0\nC: \"OO\",1,2\nC: \"OO\",3,1\n";
    const double step = 170.0 / bones;
    for (int bone = 0; bone < bones; ++bone) {
        const QByteArray id = QByteArray::number(1000 + bone), cluster = QByteArray::number(5000 + bone);
        QByteArray indices, weights;
        int count = 0;
        for (int row = 0; row < rows; ++row) {
            const double at = double(row) * bones / rows;
            const double share = 1.0 - std::abs(at - bone);
            for (int column = 0; share > 0.0 && column < columns; ++column, ++count) {
                indices += QByteArray::number(row * columns + column) + ',';
                weights += QByteArray::number(share) + ',';
            }
        }
        indices.chop(1);
        weights.chop(1);
        const QByteArray place = QByteArray::number(bone * step);
        objects += "Model: " + id + ", \"Model::bone" + QByteArray::number(bone) +
                   "\", \"LimbNode\" {\nProperties70:  {\nP: \"Lcl Translation\", \"Lcl Translation\", \"\", \"A\",0," +
                   QByteArray::number(bone == 0 ? 0.0 : step) + ",0\n}\n}\nDeformer: " + cluster +
                   ", \"SubDeformer::\", \"Cluster\" {\nIndexes: *" + QByteArray::number(count) + " {\na: " + indices +
                   "\n}\nWeights: *" + QByteArray::number(count) + " {\na: " + weights +
                   "\n}\nTransform: *16 {\na: 1,0,0,0,0,1,0,0,0,0,1,0,0,-" + place +
                   ",0,1\n}\nTransformLink: *16 {\na: 1,0,0,0,0,1,0,0,0,0,1,0,0," + place + ",0,1\n}\n}\n";
        links += "C: \"OO\"," + id + ',' + (bone == 0 ? QByteArray("0") : QByteArray::number(999 + bone)) +
                 "\nC: \"OO\"," + cluster + ",3\nC: \"OO\"," + id + ',' + cluster + '\n';
    }
    return "; FBX 7.4.0 project file\nFBXHeaderExtension:  {\nFBXHeaderVersion: 1003\nFBXVersion: 7400\n}\n"
           "GlobalSettings:  {\nVersion: 1000\nProperties70:  {\nP: \"UnitScaleFactor\", \"double\", \"Number\", "
           "\"\",1\n}\n}\nObjects:  {\n" +
           objects + "}\nConnections:  {\n" + links + "}\n";
}

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
    const bool isShort = argc > 1 && std::strcmp(argv[1], "--short") == 0;
    QTemporaryDir folder;
    QStringList paths = application.arguments().mid(isShort ? 2 : 1);
    if (paths.isEmpty()) {
        paths.append(folder.filePath(QStringLiteral("tube.fbx")));
        QFile file(paths.front());
        if (!file.open(QIODevice::WriteOnly))
            return 1;
        file.write(isShort ? tube(100, 50, 20) : tube(500, 200, 100));
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
    }
    return 0;
}
