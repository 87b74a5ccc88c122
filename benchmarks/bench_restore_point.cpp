// A restore point around deleting a bone of a figure of 214,000 vertices and 160 bones: the time and the bytes that it
// adds, beside one copy of what the command changed. A path of a .glb as argument takes that figure instead.

#include "RyBenchmark.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "rycore/undo/restore/RyRestoreSpan.h"

#include <QCoreApplication>

#include <cmath>
#include <map>

#include <malloc.h>

namespace {

constexpr int Columns = 428;
constexpr int Rows = 500;
constexpr int Bones = 160;
constexpr int Runs = 9;

size_t allocated()
{
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// A tube of quads with four influences for each vertex.
void buildFigure(RyScene &scene)
{
    RyUndoStackLock lock;
    auto *figure = new RySkeleton;
    figure->setName(QStringLiteral("tube"));
    auto *mesh = new RyFacetMesh;
    std::vector<RyVec3> positions;
    std::vector<RyFacet> facets;
    std::vector<std::map<int, quint16>> weights(Bones);
    for (int row = 0; row < Rows; ++row) {
        for (int column = 0; column < Columns; ++column) {
            const float angle = 6.2831853f * float(column) / Columns;
            const int vertex = int(positions.size());
            positions.push_back({20 * std::cos(angle), 180.0f * float(row) / Rows, 20 * std::sin(angle)});
            const int first = row * Bones / Rows;
            const int shares[4] = {30000, 20000, 10000, 5535};
            for (int k = 0; k < 4; ++k)
                weights[size_t(std::min(first + k, Bones - 1))][vertex] += quint16(shares[k]);
            if (row > 0) {
                const int next = vertex - column + (column + 1) % Columns;
                facets.push_back({{vertex - Columns, next - Columns, next, vertex}});
            }
        }
    }
    const int count = int(positions.size());
    mesh->setPositions(std::move(positions));
    mesh->setFacets(std::move(facets));
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(mesh));
    auto *skin = new RySkinBinding;
    RyNode *parent = figure;
    for (int i = 0; i < Bones; ++i) {
        auto *bone = new RyBone;
        bone->setName(QStringLiteral("bone%1").arg(i));
        parent->addNodeChild(bone);
        parent = bone;
        std::vector<int> indices;
        std::vector<quint16> values;
        for (const auto &[vertex, weight] : weights[size_t(i)]) {
            indices.push_back(vertex);
            values.push_back(weight);
        }
        auto *map = new RyWeightMap(bone->getName());
        map->setAffected(count, std::move(indices), std::move(values));
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        binding->setWeights(map);
        skin->addBoneBinding(binding);
    }
    object->addModifier(skin);
    figure->setObject(object);
    scene.addNode(figure);
}

/// What the delete command does: the history goes, the bone goes, its weights go to its parent.
void deleteBone(RyScene &scene, RyBone *bone)
{
    RyUndoStackLock lock;
    ryUndoStack()->clearAll();
    RySkinBinding *skin = RySkinBinding::findSkinFromNode(bone);
    const RyRef<RyBoneBinding> binding(skin->findBoneBinding(bone));
    const RyWeightMap &source = *binding->getWeights();
    RyNode *parent = bone->getNodeParent();
    RyWeightMap &target = *skin->findBoneBinding(parent)->getWeights();
    std::map<int, int> sums;
    for (const RyWeightMap *map : {&source, static_cast<const RyWeightMap *>(&target)}) {
        for (int i = 0; i < map->getNumAffected(); ++i)
            sums[map->getAffectedIndices()[i]] += map->getAffectedWeights()[i];
    }
    std::vector<int> indices;
    std::vector<quint16> weights;
    for (const auto &[vertex, sum] : sums) {
        indices.push_back(vertex);
        weights.push_back(quint16(std::min(sum, 65535)));
    }
    target.setAffected(target.getNumWeights(), std::move(indices), std::move(weights));
    skin->removeBoneBinding(binding.get());
    skin->normalize(0, RySkinBinding::GeneralWeights, false);
    for (RyNode *child : bone->nodeChildrenIterator()) {
        const RyRef<RyNode> held(child);
        bone->removeNodeChild(child);
        parent->addNodeChild(child);
    }
    scene.removeNode(bone);
}

using Maps = std::map<const RyBone *, std::pair<std::vector<int>, std::vector<quint16>>>;

Maps copyMaps(const RySkinBinding &skin)
{
    Maps maps;
    for (const RyBoneBinding *binding : skin.bindings()) {
        const RyWeightMap *map = binding->getWeights();
        const int count = map->getNumAffected();
        maps[binding->getBone()] = {{map->getAffectedIndices(), map->getAffectedIndices() + count},
                                    {map->getAffectedWeights(), map->getAffectedWeights() + count}};
    }
    return maps;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    RyScene scene;
    if (argc > 1) {
        QString error;
        if (!RySceneFile::open(&scene, QString::fromLocal8Bit(argv[1]), &error)) {
            std::fprintf(stderr, "%s\n", qPrintable(error));
            return 1;
        }
    } else {
        buildFigure(scene);
    }
    RySkeleton *figure = scene.getSkeletons().front();
    RySkinBinding *skin = RySkinBinding::findSkinFromNode(figure);
    // The bone with most weights whose parent has weights too.
    RyBone *bone = nullptr;
    int most = -1;
    for (const RyBoneBinding *binding : skin->bindings()) {
        const RyBoneBinding *above =
            binding->getBone() ? skin->findBoneBinding(binding->getBone()->getNodeParent()) : nullptr;
        if (above && above->getWeights() && binding->getWeights() && binding->getWeights()->getNumAffected() > most) {
            most = binding->getWeights()->getNumAffected();
            bone = binding->getBone();
        }
    }
    if (!bone) {
        std::fprintf(stderr, "the figure has no bone to delete\n");
        return 1;
    }
    const QString before = rySceneDump(scene);
    const Maps old = copyMaps(*skin);
    RyRestorePoints *points = ryRestorePoints();

    std::vector<double> guarded, restoring, copying;
    size_t changedBytes = 0;
    for (int run = 0; run < Runs; ++run) {
        points->setMost(1);
        guarded.push_back(RyBenchmark::milliseconds([&] {
            const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("Delete Bone"));
            deleteBone(scene, bone);
        }));
        // What the command changed: the maps that differ now, and those that are gone.
        Maps changed;
        const Maps now = copyMaps(*skin);
        for (const auto &[owner, map] : old) {
            const auto found = now.find(owner);
            if (found == now.end() || found->second != map)
                changed[owner] = map;
        }
        changedBytes = 0;
        for (const auto &[owner, map] : changed)
            changedBytes += map.first.size() * sizeof(int) + map.second.size() * sizeof(quint16);
        Maps copy;
        copying.push_back(RyBenchmark::milliseconds([&] { copy = changed; }));
        const QString after = rySceneDump(scene);
        restoring.push_back(RyBenchmark::milliseconds([&] { points->restore(0); }));
        if (rySceneDump(scene) != before || copyMaps(*skin) != old) {
            std::fprintf(stderr, "restoring gave another scene\n");
            return 1;
        }
        points->restore(0);
        if (rySceneDump(scene) != after) {
            std::fprintf(stderr, "taking back gave another scene\n");
            return 1;
        }
        points->restore(0);
        points->clear();
    }
    // Last, since nothing leads back: what goes with the point is what it cost.
    points->setMost(1);
    {
        const RyRestoreSpan guard(RyRestoreSpan::Scope::Command, QStringLiteral("Delete Bone"));
        deleteBone(scene, bone);
    }
    const size_t with = allocated();
    points->clear();
    const size_t pointBytes = with - allocated();
    std::printf("vertices %d, bindings %d; the bone has %d weights\n",
                static_cast<RyFacetShape *>(figure->getObject()->getCurrentShape())->getFacetMesh()->getNumVertices(),
                skin->getNumBoneBindings() + 1, most);
    std::printf(
        "restored scenes equal the first one; %.1f ms for the command with its point, %.1f ms to restore, %.2f ms to "
        "copy what changed (medians of %d)\n",
        RyBenchmark::median(guarded), RyBenchmark::median(restoring), RyBenchmark::median(copying), Runs);
    const double ratio = double(pointBytes) / double(changedBytes);
    std::printf("bytes of the point %zu, of one copy of what changed %zu, ratio %.3f\n", pointBytes, changedBytes,
                ratio);
    ryUndoStack()->clearAll();
    return ratio <= 1.5 ? 0 : 1;
}
