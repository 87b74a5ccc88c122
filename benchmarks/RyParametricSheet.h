#pragma once

#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/figure/RyLegacyJointMaker.h"
#include "rycore/figure/RyLegacyZoneFit.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"

#include <cmath>
#include <vector>

/// A parametric figure that is seen: a wavy sheet of quads, 180 by 126 cm, with a chain of bones along X, each with its
/// strip of the sheet as face group.
struct RyParametricSheet
{
    static constexpr float Width = 180.0f;
    static constexpr float Height = 126.0f;

    RyParametricSheet(RyScene *scene, int facets, int bones)
    {
        figure = new RyLegacyFigure;
        auto *object = new RyObject;
        binding = new RyLegacyBinding;
        object->addModifier(binding);
        figure->setObject(object);
        figure->setSelectionMap(new RySelectionMap);
        scene->addNode(figure);
        for (int i = 0; i < bones; ++i) {
            auto *bone = new RyBone;
            bone->setName(QStringLiteral("b%1").arg(i));
            const float step = Width / float(bones);
            bone->setOrigin(RyVec3(-Width / 2 + step * float(i), 0, 0), true);
            bone->setEndPoint(RyVec3(-Width / 2 + step * float(i + 1), 0, 0), true);
            (chain.empty() ? static_cast<RyNode *>(figure) : chain.back())->addNodeChild(bone);
            scene->addNode(bone);
            chain.push_back(bone);
        }
        object->addShape(new RyFacetShape(makeMesh(facets)));
        for (RyBone *bone : chain) {
            RyLegacyJointMaker(bone, RyLegacyJointMaker::Side::ByEndPoint).make(bone->getNodeParent(), true);
            RyLegacyZoneFit::fit(bone);
        }
    }

    RyLegacyFigure *figure;
    RyLegacyBinding *binding;
    RyFacetMesh *mesh = nullptr;
    std::vector<RyBone *> chain;

private:
    RyFacetMesh *makeMesh(int wanted)
    {
        const int rows = int(std::sqrt(double(wanted)));
        const int columns = wanted / rows;
        std::vector<RyVec3> positions;
        for (int y = 0; y <= rows; ++y) {
            for (int x = 0; x <= columns; ++x) {
                const float u = float(x) / float(columns);
                const float v = float(y) / float(rows);
                positions.emplace_back((u - 0.5f) * Width, (v - 0.5f) * Height,
                                       6.0f * std::sin(20.0f * u) * std::cos(17.0f * v));
            }
        }
        std::vector<RyFacet> facets;
        std::vector<int> groups;
        for (int y = 0; y < rows; ++y) {
            for (int x = 0; x < columns; ++x) {
                const int a = y * (columns + 1) + x;
                facets.push_back({{a, a + 1, a + columns + 2, a + columns + 1}, -1});
                groups.push_back(x * int(chain.size()) / columns);
            }
        }
        mesh = new RyFacetMesh;
        mesh->setPositions(std::move(positions));
        mesh->setFacets(std::move(facets));
        for (RyBone *bone : chain) {
            mesh->createFaceGroup(bone->getName());
            figure->getSelectionMap()->addPair(bone->getName(), bone, false);
        }
        mesh->setGroupsOfFacets(groups);
        return mesh;
    }
};
