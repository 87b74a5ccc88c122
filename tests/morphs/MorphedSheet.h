#pragma once

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyMorph.h"
#include "skin/SkinFixture.h"

#include <memory>

/// A posed figure whose mesh is a crumpled sheet of quads, bound to bones with random weights; some vertices follow
/// none. Half of the sheet is split at hard edges.
class MorphedSheet : public SkinFixture
{
public:
    static constexpr int Columns = 64;
    static constexpr int Rows = 50;
    static constexpr int Vertices = Columns * Rows;

    MorphedSheet() : SkinFixture(8, Vertices)
    {
        std::vector<RyVec3> positions;
        std::vector<RyFacet> facets;
        for (int v = 0; v < Vertices; ++v) {
            positions.push_back(
                {float(v % Columns) + float(number(-0.3, 0.3)), float(v / Columns) * 3.0f, float(number(-1, 1))});
        }
        for (int v = 0; v + Columns < Vertices; ++v) {
            if (v % Columns + 1 < Columns)
                facets.push_back({{v, v + 1, v + 1 + Columns, v + Columns}});
        }
        mesh->setPositions(positions);
        mesh->setFacets(facets);
        shape = qobject_cast<RyFacetShape *>(skeleton->getObject()->getCurrentShape());
        shape->setParts(splitParts());
        auto weights = randomWeights(3);
        for (size_t bone = 0; bone < bones.size(); ++bone) {
            for (int v = 700; v < 760; ++v)
                weights[bone][size_t(v)] = 0;
            skin->bindings()[bone]->setWeights(ryMapOf(weights[bone]));
        }
        skeleton->getScaleControl()->setValue(1.3f);
        poseAll();
    }

    /// Moves the vertices from `first` on in steps of `step`.
    RyMorph *addMorph(const QString &name, int first, int step, int count)
    {
        std::vector<int> vertices;
        std::vector<RyVec3> deltas;
        for (int v = first; v < Vertices && int(vertices.size()) < count; v += step) {
            vertices.push_back(v);
            deltas.push_back({float(number(-9, 9)), float(number(-9, 9)), float(number(-9, 9))});
        }
        auto *morph = new RyMorph(name, vertices, deltas);
        shape->addMorph(morph);
        return morph;
    }

    /// Base + sum of value * delta, plainly.
    std::vector<RyVec3> expectedPositions() const
    {
        std::vector<RyVec3> result;
        for (int v = 0; v < Vertices; ++v) {
            double sum[3];
            for (int axis = 0; axis < 3; ++axis)
                sum[axis] = double(mesh->getVertex(v)[axis]);
            for (const RyMorph *morph : shape->getMorphs()) {
                const auto place = std::lower_bound(morph->vertices().begin(), morph->vertices().end(), v);
                if (place == morph->vertices().end() || *place != v || morph->shownValue() == 0.0f)
                    continue;
                const RyVec3 delta = morph->deltas()[size_t(place - morph->vertices().begin())];
                for (int axis = 0; axis < 3; ++axis)
                    sum[axis] += double(morph->shownValue()) * double(delta[axis]);
            }
            result.push_back({float(sum[0]), float(sum[1]), float(sum[2])});
        }
        return result;
    }

    /// What a shape without morphs shows whose vertices stand where the morphs bring them, and its normals.
    std::pair<std::vector<RyVec3>, std::vector<RyVec3>> expectedPoints() const
    {
        auto *plain = new RyFacetMesh;
        plain->setPositions(expectedPositions());
        plain->setFacets(mesh->getFacets());
        auto *plainShape = new RyFacetShape(plain);
        plainShape->setParts(shape->getParts());
        const RyRef<RyObject> object(new RyObject);
        object->addShape(plainShape);
        auto *plainSkin = new RySkinBinding;
        for (const RyBoneBinding *binding : skin->bindings()) {
            auto *copy = new RyBoneBinding;
            copy->setBone(binding->getBone());
            copy->setWeights(binding->getWeights());
            plainSkin->addBoneBinding(copy);
        }
        object->addModifier(plainSkin);
        const RyShapePoints points = object->getDeformedPoints();
        return {*points.positions, *points.normals};
    }

    RyFacetShape *shape = nullptr;

private:
    /// One part; every second column has two normals at each vertex.
    std::shared_ptr<const RyMeshParts> splitParts() const
    {
        auto parts = std::make_shared<RyMeshParts>();
        RyMeshPart part;
        part.facetCount = mesh->getNumFacets();
        for (const RyFacet &facet : mesh->getFacets()) {
            const auto first = unsigned(part.vertexOfSplit.size());
            for (int corner = 0; corner < 4; ++corner) {
                const int vertex = facet.vertices[corner];
                const bool isSharp = vertex % Columns % 2 == 0 && vertex >= Vertices / 2;
                const bool isLeft = corner == 1 || corner == 2;
                part.vertexOfSplit.push_back(vertex);
                part.normalOfSplit.push_back(isSharp && isLeft ? Vertices + vertex : vertex);
            }
            for (const unsigned corner : {0u, 1u, 2u, 0u, 2u, 3u})
                part.triangles.push_back(first + corner);
        }
        parts->normalCount = 2 * Vertices;
        parts->parts.push_back(std::move(part));
        return parts;
    }
};
