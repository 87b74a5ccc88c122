#pragma once

#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RySkinBinding.h"

#include <vector>

/// A figure of any size for benchmarks: a chain of bones, with branches of ten, and vertices with four influences each,
/// where neighbouring vertices follow neighbouring bones. All weights of a vertex make full weight.
inline RyFigure *makeChainFigure(RyScene *scene, int vertices, int bones)
{
    constexpr int influences = 4;
    auto *figure = new RyFigure;
    figure->setName(QStringLiteral("chain"));
    auto *mesh = new RyFacetMesh;
    mesh->setPositions(std::vector<RyVec3>(size_t(vertices)));
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(mesh));
    auto *skin = new RySkinBinding;
    object->addModifier(skin);
    figure->setObject(object);

    std::vector<std::vector<int>> indices(static_cast<size_t>(bones));
    std::vector<std::vector<quint16>> weights(static_cast<size_t>(bones));
    for (int v = 0; v < vertices; ++v) {
        const auto first = size_t(qint64(v) * (bones - influences) / vertices);
        for (size_t k = 0; k < influences; ++k) {
            indices[first + k].push_back(v);
            weights[first + k].push_back(quint16(k == 0 ? 16386 : 16383)); // 65535 together
        }
    }
    std::vector<RyBone *> chain;
    for (int i = 0; i < bones; ++i) {
        auto *bone = new RyBone;
        bone->setName(QStringLiteral("bone%1_").arg(i));
        bone->setOrigin(RyVec3(0, float(i), 0), true);
        bone->setEndPoint(RyVec3(0, float(i) + 1.0f, 0), true);
        RyNode *parent = chain.empty() ? static_cast<RyNode *>(figure) : chain[size_t(i - 1) / 10 * 10];
        parent->addNodeChild(bone);
        chain.push_back(bone);
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        auto *map = new RyWeightMap;
        map->setAffected(vertices, std::move(indices[size_t(i)]), std::move(weights[size_t(i)]));
        binding->setWeights(map);
        skin->addBoneBinding(binding);
    }
    scene->addNode(figure);
    return figure;
}
