// Deleting a bone of a large character: 214,000 vertices with four influences each, 163 bones. The peer reads all
// weight maps of the skin once, which is the least that normalizing them takes.
#include "RyBenchmark.h"
#include "RyChainFigure.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <QCoreApplication>

namespace {

constexpr int Vertices = 214000;
constexpr int Bones = 163;
constexpr int Runs = 41;

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
    const RyFigure *figure = makeChainFigure(ryScene(), Vertices, Bones);
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
