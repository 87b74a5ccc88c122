// Deleting a bone of a large character: 214,000 vertices with four influences each, 163 bones. The peer reads all weight
// maps of the skin once, which is the least that normalizing them takes.
#include "RyBenchmark.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <QCoreApplication>

namespace {

constexpr int Vertices = 214000;
constexpr int Bones = 163;
constexpr int Influences = 4;
constexpr int Runs = 41;

/// A chain of bones; neighbouring vertices follow neighbouring bones.
RyFigure *makeFigure()
{
    auto *figure = new RyFigure;
    auto *mesh = new RyFacetMesh;
    mesh->setPositions(std::vector<RyVec3>(Vertices));
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(mesh));
    auto *skin = new RySkinBinding;
    object->addModifier(skin);
    figure->setObject(object);

    std::vector<std::vector<int>> indices(Bones);
    std::vector<std::vector<quint16>> weights(Bones);
    for (int v = 0; v < Vertices; ++v) {
        const auto first = size_t(qint64(v) * (Bones - Influences) / Vertices);
        for (size_t k = 0; k < Influences; ++k) {
            indices[first + k].push_back(v);
            weights[first + k].push_back(quint16(k == 0 ? 16386 : 16383)); // 65535 together
        }
    }
    RyNode *parent = figure;
    for (size_t i = 0; i < Bones; ++i) {
        auto *bone = new RyBone;
        bone->setName(QStringLiteral("bone%1").arg(i));
        parent->addNodeChild(bone);
        parent = bone;
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        auto *map = new RyWeightMap;
        map->setAffected(Vertices, std::move(indices[i]), std::move(weights[i]));
        binding->setWeights(map);
        skin->addBoneBinding(binding);
    }
    ryScene()->addNode(figure);
    return figure;
}

quint64 readOnce(const RySkinBinding *skin, std::vector<quint32> &sums)
{
    std::fill(sums.begin(), sums.end(), 0);
    for (const RyBoneBinding *binding : skin->bindings()) {
        const RyWeightMap *map = binding->getWeights();
        const int *indices = map->getAffectedIndices();
        const quint16 *weights = map->getAffectedWeights();
        const int affected = map->getNumAffected();
        for (int i = 0; i < affected; ++i)
            sums[size_t(indices[i])] += weights[i];
    }
    quint64 total = 0;
    for (const quint32 sum : sums)
        total += sum;
    return total;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const RyFigure *figure = makeFigure();
    const RySkinBinding *skin = figure->getSkinBinding();
    std::vector<quint32> sums(Vertices);
    const quint64 before = readOnce(skin, sums);
    quint64 read = 0;
    const double ratio = RyBenchmark::compare(
        "delete bone", Runs,
        [&] {
            const RyUndoStackLock lock;
            deleteBone(figure->getAllBones()[40]);
        },
        "one pass over the weight maps", [&] { read += readOnce(skin, sums); });
    const bool right = readOnce(skin, sums) == before && skin->getNumBoneBindings() == Bones - Runs - 1;
    if (!right)
        std::printf("wrong: weights were lost\n");
    ryDestroyScene();
    return right && read > 0 && ratio < 3.0 ? 0 : 1;
}
