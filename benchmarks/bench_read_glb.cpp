// Reading a 40 MB .glb (500,000 vertices, 200 joints) into mesh and weight maps, against reading the file and copying
// its bytes.

#include "RyBenchmark.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/io/gltf/document/RyGltfDocument.h"
#include "rycore/io/gltf/open/RyGltfSceneReader.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstring>
#include <random>

namespace {

constexpr int Columns = 1000;
constexpr int Rows = 500;
constexpr int Joints = 200;

/// A tube of quads with four influences each, written with normals and texture coordinates.
bool writeFile(const QString &path)
{
    std::unique_ptr<RyGltfDocument> document = RyGltfDocument::create();
    std::vector<float> positions, normals, uvs, weights;
    std::vector<std::uint32_t> joints, indices;
    std::mt19937 random(7);
    std::uniform_real_distribution<float> share(0.05f, 1.0f);
    for (int row = 0; row < Rows; ++row) {
        for (int column = 0; column < Columns; ++column) {
            const float angle = float(column) / Columns * 6.2831853f;
            const float height = 1.7f * float(row) / Rows;
            positions.insert(positions.end(), {0.2f * std::cos(angle), height, 0.2f * std::sin(angle)});
            normals.insert(normals.end(), {std::cos(angle), 0.0f, std::sin(angle)});
            uvs.insert(uvs.end(), {float(column) / Columns, float(row) / Rows});
            float four[4];
            float sum = 0.0f;
            for (float &value : four)
                sum += value = share(random);
            for (int i = 0; i < 4; ++i) {
                joints.push_back(std::uint32_t(std::min(Joints - 1, row * Joints / Rows + i)));
                weights.push_back(four[i] / sum);
            }
        }
    }
    for (int row = 0; row + 1 < Rows; ++row) {
        for (int column = 0; column < Columns; ++column) {
            const std::uint32_t a = std::uint32_t(row * Columns + column);
            const std::uint32_t b = std::uint32_t(row * Columns + (column + 1) % Columns);
            indices.insert(indices.end(), {a, a + Columns, b, b, a + Columns, b + Columns});
        }
    }
    std::vector<int> jointNodes;
    std::vector<float> inverseBinds;
    for (int joint = 0; joint < Joints; ++joint) {
        RyGltfTransform transform;
        transform.translation = {0.0, joint == 0 ? 0.0 : 1.7 / Joints, 0.0};
        jointNodes.push_back(
            document->addNode(QStringLiteral("joint%1").arg(joint), transform, joint == 0 ? -1 : jointNodes.back()));
        const float matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, -1.7f * float(joint) / Joints, 0, 1};
        inverseBinds.insert(inverseBinds.end(), matrix, matrix + 16);
    }
    const int skin =
        document->addSkin(QStringLiteral("tube"), jointNodes, document->addFloatAccessor(inverseBinds, 16, 0), -1);
    const int mesh = document->addMesh(QStringLiteral("tube"));
    document->addPrimitive(mesh,
                           {{"POSITION", document->addFloatAccessor(positions, 3, 34962, true)},
                            {"NORMAL", document->addFloatAccessor(normals, 3, 34962)},
                            {"TEXCOORD_0", document->addFloatAccessor(uvs, 2, 34962)},
                            {"JOINTS_0", document->addUintAccessor(joints, 4, 5121, 34962)},
                            {"WEIGHTS_0", document->addFloatAccessor(weights, 4, 34962)}},
                           document->addUintAccessor(indices, 1, 5125, 34963), -1);
    document->setNodeMeshAndSkin(document->addNode(QStringLiteral("tube"), RyGltfTransform(), -1), mesh, skin);
    QString error;
    if (!document->write(path, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("tube.glb"));
    if (!writeFile(path))
        return 1;
    std::printf("file: %.1f MB\n", double(QFile(path).size()) / 1e6);

    std::vector<RyRef<RyNode>> figure;
    const auto readOurs = [&] {
        figure.clear();
        QString error;
        std::unique_ptr<RyGltfDocument> document = RyGltfDocument::read(path, &error);
        RyUndoStackLock lock;
        RyGltfSceneReader reader(std::move(document), path, 100.0);
        reader.build(nullptr);
        figure = reader.topLevelNodes();
    };
    std::vector<char> copy;
    const auto readPlain = [&] {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return;
        const QByteArray bytes = file.readAll();
        copy.resize(size_t(bytes.size()));
        std::memcpy(copy.data(), bytes.constData(), copy.size());
    };

    // The result first: counts, and every vertex' weights sum to one.
    readOurs();
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(figure.front()));
    std::vector<int> sums(size_t(shape->getFacetMesh()->getNumVertices()), 0);
    const auto &bindings = RySkinBinding::findSkinFromNode(figure.front())->bindings();
    for (const RyBoneBinding *binding : bindings) {
        const RyWeightMap &map = *binding->getWeights();
        for (int i = 0; i < map.getNumAffected(); ++i)
            sums[size_t(map.getAffectedIndices()[i])] += map.getAffectedWeights()[i];
    }
    const bool right = shape->getFacetMesh()->getNumVertices() == Columns * Rows && bindings.size() == Joints &&
                       std::all_of(sums.begin(), sums.end(), [](int sum) { return sum == 65535; });
    std::printf("vertices %d, facets %d, bindings %zu, all weights sum to one: %s\n",
                shape->getFacetMesh()->getNumVertices(), shape->getFacetMesh()->getNumFacets(), bindings.size(),
                right ? "yes" : "NO");
    if (!right)
        return 1;
    RyBenchmark::compare("read a .glb into mesh and weight maps", 9, readOurs, "read + memcpy", readPlain);
    return 0;
}
