#include "RySkinnedScene.h"

#include "support/RyTest.h"

#include <limits>
#include <random>
#include <set>

std::vector<int> ryWeightsOf(const RyWeightMap *map)
{
    std::vector<int> weights;
    for (int i = 0; map && i < map->getNumWeights(); ++i)
        weights.push_back(map->getWeight(i));
    return weights;
}

/// One map per bone; every vertex gets a full sum from some of them.
static std::vector<RyWeightMap *> randomMaps(size_t bones, size_t vertices, std::mt19937 &random)
{
    std::vector<std::vector<quint16>> weights(bones, std::vector<quint16>(vertices, 0));
    for (size_t v = 0; v < vertices; ++v) {
        int left = RyWeightMap::FullWeight;
        for (size_t turn = 0; turn < 3; ++turn) {
            const int share = turn == 2 ? left : int(random() % unsigned(left + 1));
            quint16 &weight = weights[random() % bones][v];
            weight = quint16(weight + share);
            left -= share;
        }
    }
    std::vector<RyWeightMap *> maps;
    for (const std::vector<quint16> &each : weights)
        maps.push_back(ryMapOf(each));
    return maps;
}

RySkinnedScene::RySkinnedScene(Maps maps, int vertexCount) : object(new RyObject), skin(new RySkinBinding)
{
    std::mt19937 random(ryTestSeed());
    std::uniform_real_distribution<float> place(-40.0f, 140.0f);
    std::vector<RyVec3> positions;
    for (int i = 0; i < vertexCount; ++i)
        positions.push_back({place(random), place(random), place(random)});
    auto *mesh = new RyFacetMesh;
    mesh->setPositions(positions);
    object->addShape(new RyFacetShape(mesh));
    object->addModifier(skin);

    const std::vector<RyBone *> bones = figure->getAllBones();
    std::vector<std::vector<RyWeightMap *>> kinds;
    for (int kind = 0; kind < 5; ++kind)
        kinds.push_back(randomMaps(bones.size(), size_t(vertexCount), random));
    for (size_t i = 0; i < bones.size(); ++i) {
        auto *binding = new RyBoneBinding;
        binding->setBone(bones[i]);
        if (maps != Local)
            binding->setWeights(kinds[0][i]);
        for (int axis = 0; axis < 3 && maps != General; ++axis)
            binding->setLocalWeights(kinds[size_t(axis) + 1][i], axis);
        if (maps != General)
            binding->setScaleWeights(kinds[4][i]);
        skin->addBoneBinding(binding);
    }
    figure->setObject(object);
}

static void addFaultsOfWeights(const RySkinBinding *skin, QStringList &faults)
{
    const char *const names[] = {"general", "x", "y", "z", "scale"};
    for (int kind = 0; kind < 5; ++kind) {
        std::vector<int> sums;
        for (const RyBoneBinding *binding : skin->bindings()) {
            const RyWeightMap *map = kind == 0   ? binding->getWeights()
                                     : kind == 4 ? binding->getScaleWeights()
                                                 : binding->getLocalWeights(kind - 1);
            if (!map)
                continue;
            sums.resize(std::max(sums.size(), size_t(map->getNumWeights())), 0);
            for (int i = 0; i < map->getNumAffected(); ++i)
                sums[size_t(map->getAffectedIndices()[i])] += map->getAffectedWeights()[i];
        }
        for (size_t v = 0; v < sums.size(); ++v) {
            if (sums[v] != 0 && sums[v] != RyWeightMap::FullWeight)
                faults.append(
                    QStringLiteral("%1 weights of %2: %3").arg(QLatin1String(names[kind])).arg(v).arg(sums[v]));
        }
    }
}

QString ryFaultsOf(const RySkeleton *skeleton)
{
    QStringList faults;
    const std::vector<RyBone *> bones = skeleton->getAllBones();
    const std::set<const RyNode *> known(bones.begin(), bones.end());
    if (const RySkinBinding *skin = RySkinBinding::findSkinFromNode(skeleton)) {
        addFaultsOfWeights(skin, faults);
        for (const RyBoneBinding *binding : skin->bindings()) {
            if (!known.count(binding->getBone()))
                faults.append(QStringLiteral("binding %1 has no bone").arg(binding->getName()));
        }
    }
    if (const RySelectionMap *map = skeleton->getSelectionMap()) {
        for (int i = 0; i < map->getNumPairs(); ++i) {
            if (!map->getPairNode(i) || !map->getPairNode(i)->getScene())
                faults.append(QStringLiteral("pair %1 has no node").arg(map->getPairGroup(i)));
        }
    }
    std::set<QString> names;
    std::set<QString> labels;
    for (const RyBone *bone : bones) {
        if (!names.insert(bone->getName()).second || !labels.insert(bone->getLabel()).second)
            faults.append(QStringLiteral("%1 is there twice").arg(bone->getName()));
        if (bone->getScene() != ryScene())
            faults.append(QStringLiteral("%1 is not in the scene").arg(bone->getName()));
    }
    return faults.join('\n');
}

float ryLargestWay(const std::vector<RyVec3> &a, const std::vector<RyVec3> &b)
{
    if (a.size() != b.size())
        return std::numeric_limits<float>::infinity();
    float largest = 0.0f;
    for (size_t i = 0; i < a.size(); ++i)
        largest = std::max(largest, (a[i] - b[i]).length());
    return largest;
}
