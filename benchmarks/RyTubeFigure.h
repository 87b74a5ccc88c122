#pragma once

#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RySkinBinding.h"

#include <cmath>
#include <numbers>
#include <vector>

/// A figure that is seen: an upright tube of quads, 180 cm high, with folds, and a chain of bones in its middle. Each
/// vertex follows four neighbouring bones.
struct RyTubeFigure
{
    static constexpr int influences = 4;

    RyTubeFigure(RyScene *scene, int vertices, int bones)
    {
        const int corners = int(std::sqrt(double(vertices) / 2.0));
        const int rings = vertices / corners;
        mesh = makeMesh(rings, corners);
        object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        figure = new RyFigure;
        figure->setObject(object);
        auto *skin = new RySkinBinding;
        object->addModifier(skin);
        for (int i = 0; i < bones; ++i) {
            auto *bone = new RyBone;
            const float step = 180.0f / float(bones);
            bone->setOrigin(RyVec3(0, step * float(i), 0), true);
            bone->setEndPoint(RyVec3(0, step * float(i + 1), 0), true);
            (chain.empty() ? static_cast<RyNode *>(figure) : chain.back())->addNodeChild(bone);
            chain.push_back(bone);
        }
        bind(*skin, rings, corners);
        scene->addNode(figure);
    }

    RyFigure *figure;
    RyObject *object;
    RyFacetMesh *mesh;
    std::vector<RyBone *> chain;

private:
    static RyFacetMesh *makeMesh(int rings, int corners)
    {
        constexpr float turn = 2.0f * std::numbers::pi_v<float>;
        std::vector<RyVec3> positions;
        for (int ring = 0; ring < rings; ++ring) {
            const float height = float(ring) / float(rings - 1);
            for (int corner = 0; corner < corners; ++corner) {
                const float angle = turn * float(corner) / float(corners);
                const float radius = 26.0f + 9.0f * std::sin(turn * 3.0f * height) + 3.0f * std::sin(7.0f * angle);
                positions.emplace_back(radius * std::cos(angle), 180.0f * height, radius * std::sin(angle));
            }
        }
        std::vector<RyFacet> facets;
        for (int ring = 0; ring + 1 < rings; ++ring) {
            for (int corner = 0; corner < corners; ++corner) {
                const int a = ring * corners + corner;
                const int b = ring * corners + (corner + 1) % corners;
                facets.push_back({{a, a + corners, b + corners, b}, -1});
            }
        }
        auto *made = new RyFacetMesh;
        made->setPositions(std::move(positions));
        made->setFacets(std::move(facets));
        return made;
    }

    void bind(RySkinBinding &skin, int rings, int corners)
    {
        const int vertices = rings * corners;
        const int bones = int(chain.size());
        std::vector<std::vector<int>> indices(chain.size());
        std::vector<std::vector<quint16>> weights(chain.size());
        for (int v = 0; v < vertices; ++v) {
            const int first = std::min(v / corners * bones / rings, bones - influences);
            for (int k = 0; k < influences; ++k) {
                indices[size_t(first + k)].push_back(v);
                weights[size_t(first + k)].push_back(quint16(k == 0 ? 16386 : 16383)); // 65535 together
            }
        }
        for (size_t i = 0; i < chain.size(); ++i) {
            auto *map = new RyWeightMap;
            map->setAffected(vertices, std::move(indices[i]), std::move(weights[i]));
            auto *binding = new RyBoneBinding;
            binding->setBone(chain[i]);
            binding->setWeights(map);
            skin.addBoneBinding(binding);
        }
    }
};
