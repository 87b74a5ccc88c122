#pragma once

#include "support/RyMapOf.h"
#include "support/RyRandom.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>

/// Makes figures of random sizes in the application's scene with all that is odd: few different weights, so that bones
/// weigh the same; bones that cannot be selected, that nobody or two bindings bind, that were deleted; local maps;
/// vertices without weights and vertices with many; facets that have a vertex twice; groups that are empty, as large as
/// the mesh or named like a bone; pairs of groups that there are and of those that there are not.
class RyRandomFigure
{
public:
    RyRandomFigure(RyRandom &random, int mostBones, int mostVertices, int mostFacets)
        : m_random(random), m_figure(new RyFigure), m_mesh(new RyFacetMesh), m_skin(new RySkinBinding)
    {
        m_figure->setName(ryScene()->getUniqueTopLevelName(QStringLiteral("random")));
        makeBones(m_random.integer(1, mostBones));
        m_mesh->setPositions(std::vector<RyVec3>(size_t(m_random.integer(1, mostVertices))));
        makeFacets(m_random.integer(1, mostFacets));
        makeGroups();
        makeBindings();
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(m_mesh));
        object->addModifier(m_skin);
        m_figure->setObject(object);
        if (m_random.chance(0.7))
            makePairs();
        ryScene()->addNode(m_figure);
        deleteABone();
    }
    RyFigure *figure() const { return m_figure; }

private:
    RyBone *anyBone() const { return m_bones[size_t(m_random.integer(0, int(m_bones.size()) - 1))]; }
    int anyVertex() const { return m_random.integer(0, m_mesh->getNumVertices() - 1); }

    void makeBones(int count)
    {
        for (int i = 0; i < count; ++i) {
            auto *bone = new RyBone;
            bone->setName(QStringLiteral("bone%1").arg(i));
            RyNode *parent = m_figure;
            if (i > 0 && m_random.chance(0.9))
                parent = anyBone();
            parent->addNodeChild(bone);
            bone->setSelectable(m_random.chance(0.7));
            m_bones.push_back(bone);
        }
    }
    /// Corners lie near one another, as they do on a surface.
    void makeFacets(int count) const
    {
        const int near = std::max(1, m_mesh->getNumVertices() / 20);
        std::vector<RyFacet> facets(static_cast<size_t>(count));
        for (RyFacet &facet : facets) {
            const int first = anyVertex();
            for (int &vertex : facet.vertices)
                vertex = std::min(first + m_random.integer(0, near), m_mesh->getNumVertices() - 1);
            if (m_random.chance(0.4))
                facet.vertices[3] = -m_random.integer(1, 7);
        }
        m_mesh->setFacets(facets);
    }
    void makeGroups() const
    {
        const int count = m_random.integer(0, 12);
        for (int i = 0; i < count; ++i)
            m_mesh->createFaceGroup(m_random.chance(0.3) ? anyBone()->getName() : QStringLiteral("group%1").arg(i));
        const int used = m_random.integer(-1, m_mesh->getNumFaceGroups() - 1);
        std::vector<int> groups;
        int group = -1;
        for (int i = 0; i < m_mesh->getNumFacets(); ++i) {
            if (i == 0 || m_random.chance(0.1))
                group = m_random.integer(-1, used);
            groups.push_back(group);
        }
        m_mesh->setGroupsOfFacets(groups);
    }
    RyWeightMap *makeMap() const
    {
        const int vertices = m_mesh->getNumVertices();
        std::vector<quint16> weights(size_t(vertices), 0);
        const int first = m_random.chance(0.2) ? 0 : anyVertex();
        const int last = m_random.chance(0.2) ? vertices - 1 : std::min(vertices - 1, first + vertices / 4);
        const quint16 few[] = {1, 2, 16383, 32768, 65535};
        for (int v = first; v <= last; ++v)
            weights[size_t(v)] = m_random.chance(0.8) ? few[m_random.integer(0, 4)] : quint16(0);
        return ryMapOf(weights);
    }
    void makeBindings() const
    {
        std::vector<RyBone *> bones = m_bones;
        std::shuffle(bones.begin(), bones.end(), m_random.engine());
        bones.resize(std::max(size_t(1), bones.size() * 9 / 10));
        if (m_random.chance(0.2))
            bones.push_back(bones.front());
        for (RyBone *bone : bones) {
            auto *binding = new RyBoneBinding;
            binding->setBone(bone);
            if (m_random.chance(0.75)) {
                binding->setWeights(makeMap());
            } else {
                binding->setLocalWeights(makeMap(), m_random.integer(0, 1));
                binding->setLocalWeights(makeMap(), m_random.integer(1, 2));
            }
            m_skin->addBoneBinding(binding);
        }
    }
    void makePairs() const
    {
        auto *map = new RySelectionMap;
        m_figure->setSelectionMap(map);
        for (int i = m_random.integer(0, 3); i > 0; --i) {
            RyNode *node = m_random.chance(0.8) ? anyBone() : nullptr;
            const int groups = m_mesh->getNumFaceGroups();
            if (groups > 0 && m_random.chance(0.7))
                map->addPair(m_mesh->getFaceGroup(m_random.integer(0, groups - 1))->getName(), node, false);
            else
                map->addPair(QStringLiteral("gone%1").arg(i), node, false);
        }
    }
    void deleteABone()
    {
        RyBone *bone = anyBone();
        if (m_random.chance(0.8) || bone->getNumNodeChildren() > 0)
            return;
        bone->getNodeParent()->removeNodeChild(bone);
        delete bone;
        std::erase(m_bones, bone);
    }

    RyRandom &m_random;
    RyFigure *m_figure;
    RyFacetMesh *m_mesh;
    RySkinBinding *m_skin;
    std::vector<RyBone *> m_bones;
};
