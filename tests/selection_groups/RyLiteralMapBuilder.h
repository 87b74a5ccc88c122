#pragma once

#include "rycore/base/RyError.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/skin/RySkinBinding.h"

#include <QBitArray>
#include <QHash>

#include <algorithm>

/// The map builder in plain steps, one thread, with lists that are linked and scores that are kept sorted. Slow, and
/// right: what the builder is compared with. Weights are for vertices of the mesh.
class RyLiteralMapBuilder
{
public:
    bool allowRegrouping = true;
    bool maintainExisting = true;
    bool respectSelectable = true;
    QString error;

    struct Influence
    {
        int index;
        quint16 weight;
        bool operator==(const Influence &) const = default;
    };
    // Of the latest call.
    std::vector<int> offsets;
    std::vector<Influence> influences;
    size_t reservedNodes = 0;

    RyError build(RyFigure *figure)
    {
        error.clear();
        const RySkinBinding *skin = figure ? RySkinBinding::findSkin(figure, nullptr) : nullptr;
        if (!skin)
            return fail("Figure has no skinbinding.", 96);
        const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure));
        if (!shape)
            return fail("Figure has no shape (or none wrong kind of shape).", 96);
        m_mesh = RyRef<RyFacetMesh>(shape->getFacetMesh());
        if (!m_mesh || m_mesh->getNumVertices() < 1 || m_mesh->getNumFacets() < 1)
            return fail("Figure does not have a mesh with faces.", 96);
        std::vector<RyRef<RyWeightMap>> maps;
        m_bindings.clear();
        skin->buildGeneralWeightMaps(maps, m_bindings, 54);
        if (m_bindings.size() != maps.size() || m_bindings.empty())
            return fail("Figure is not bound to any bones.", 98);
        gatherInfluences(maps);
        m_map = figure->getSelectionMap();
        if (!m_map) {
            m_map = new RySelectionMap;
            figure->setSelectionMap(m_map);
        } else if (!maintainExisting) {
            m_map->clearAll();
        }
        if (allowRegrouping)
            regroup();
        else
            mapExistingGroups();
        m_mesh = {};
        return 0;
    }

private:
    struct Node
    {
        Influence influence;
        int next;
    };
    struct Score
    {
        int index;
        qint64 sum;
    };
    using Scores = std::vector<Score>;

    RyError fail(const char *text, int code)
    {
        error = QLatin1String(text);
        m_mesh = {};
        return code;
    }

    int storedIndex(int i, const QHash<const RyNode *, int> &places) const
    {
        const RyNode *bone = m_bindings[size_t(i)]->getBone();
        if (!respectSelectable || !bone)
            return i;
        while (!bone->isSelectable()) {
            const RyNode *parent = bone->getNodeParent();
            if (!parent || qobject_cast<const RySkeleton *>(parent) || qobject_cast<const RySkeleton *>(bone))
                break;
            bone = parent;
        }
        return places.value(bone, i);
    }

    void gatherInfluences(const std::vector<RyRef<RyWeightMap>> &maps)
    {
        const int vertexCount = m_mesh->getNumVertices();
        QHash<const RyNode *, int> places;
        for (size_t i = 0; i < m_bindings.size(); ++i) {
            if (m_bindings[i]->getBone())
                places.insert(m_bindings[i]->getBone(), int(i));
        }
        std::vector<Node> pool;
        pool.reserve(8 * size_t(vertexCount) + 1);
        reservedNodes = pool.capacity();
        pool.push_back({{-1, 0}, 0}); // 0 ends a list
        std::vector<int> heads(size_t(vertexCount), 0);
        for (size_t i = 0; i < maps.size(); ++i) {
            const int count = maps[i]->getNumAffected();
            if (count < 1)
                continue;
            const int stored = storedIndex(int(i), places);
            const int *vertices = maps[i]->getAffectedIndices();
            const quint16 *weights = maps[i]->getAffectedWeights();
            for (int k = 0; k < count; ++k) {
                if (vertices[k] < 0 && vertices[k] >= vertexCount)
                    continue;
                insert(pool, heads[size_t(vertices[k])], {stored, weights[k]});
            }
        }
        flatten(pool, heads);
    }

    static void insert(std::vector<Node> &pool, int &head, Influence influence)
    {
        int last = 0;
        int next = head;
        while (next != 0) {
            const Influence &there = pool[size_t(next)].influence;
            if (there.weight < influence.weight || (there.weight == influence.weight && there.index >= influence.index))
                break;
            last = next;
            next = pool[size_t(next)].next;
        }
        const int added = int(pool.size());
        pool.push_back({influence, next});
        if (last == 0)
            head = added;
        else
            pool[size_t(last)].next = added;
    }

    void flatten(const std::vector<Node> &pool, const std::vector<int> &heads)
    {
        offsets.assign(1, 0);
        offsets.reserve(heads.size() + 1);
        influences.clear();
        influences.reserve(pool.size() - 1);
        for (const int head : heads) {
            for (int node = head; node != 0; node = pool[size_t(node)].next)
                influences.push_back(pool[size_t(node)].influence);
            offsets.push_back(int(influences.size()));
        }
    }

    void addFacet(int facet, Scores &scores) const
    {
        if (facet < 0 || facet >= m_mesh->getNumFacets())
            return;
        const RyFacet &corners = m_mesh->getFacet(facet);
        for (int corner = 0; corner < (corners.vertices[3] < 0 ? 3 : 4); ++corner) {
            const auto vertex = size_t(corners.vertices[corner]);
            for (int k = offsets[vertex]; k < offsets[vertex + 1]; ++k) {
                const Influence &influence = influences[size_t(k)];
                const auto place = std::lower_bound(scores.begin(), scores.end(), influence.index,
                                                    [](const Score &score, int index) { return score.index < index; });
                if (place != scores.end() && place->index == influence.index)
                    place->sum += influence.weight;
                else
                    scores.insert(place, {influence.index, influence.weight});
            }
        }
    }

    void mapExistingGroups()
    {
        for (int g = 0; g < m_mesh->getNumFaceGroups(); ++g) {
            const RyFaceGroup *group = m_mesh->getFaceGroup(g);
            if (!group || group->getFacets().count() == 0)
                continue;
            if (maintainExisting && m_map->findPair(group->getName()) >= 0)
                continue;
            Scores scores;
            scores.reserve(256);
            for (int i = 0; i < group->getFacets().count(); ++i)
                addFacet(group->getFacets().getIndicesPtr()[i], scores);
            int winner = -1;
            qint64 best = -1;
            for (const Score &score : scores) {
                if (maintainExisting && m_map->findPair(m_bindings[size_t(score.index)]->getBone()) >= 0)
                    continue;
                if (score.sum > best) {
                    best = score.sum;
                    winner = score.index;
                }
            }
            if (winner >= 0 && m_bindings[size_t(winner)]->getBone())
                m_map->addPair(group->getName(), m_bindings[size_t(winner)]->getBone(), false);
        }
    }

    void regroup()
    {
        const int facetCount = m_mesh->getNumFacets();
        std::vector<int> winners(size_t(facetCount), -1);
        std::vector<int> counts(m_bindings.size(), 0);
        QBitArray marked(m_mesh->getNumFaceGroups());
        for (int i = 0; maintainExisting && i < m_map->getNumPairs(); ++i) {
            for (int g = 0; g < m_mesh->getNumFaceGroups(); ++g) {
                if (m_mesh->getFaceGroup(g) == m_mesh->findFaceGroup(m_map->getPairGroup(i)))
                    marked.setBit(g);
            }
        }
        for (int f = 0; f < facetCount; ++f) {
            const int group = m_mesh->getFacet(f).group;
            if (group >= 0 && marked.testBit(group))
                continue;
            Scores scores;
            scores.reserve(32);
            addFacet(f, scores);
            if (scores.empty())
                continue;
            const Score *best = &scores.front();
            for (const Score &score : scores) {
                if (score.sum > best->sum)
                    best = &score;
            }
            winners[size_t(f)] = best->index;
            ++counts[size_t(best->index)];
        }
        for (size_t b = 0; b < m_bindings.size(); ++b) {
            RyBone *bone = m_bindings[b]->getBone();
            if (counts[b] < 1 || !bone || (maintainExisting && m_map->findPair(bone) >= 0))
                continue;
            giveFacets(bone, int(b), winners);
        }
    }

    void giveFacets(RyBone *bone, int binding, const std::vector<int> &winners)
    {
        RyIndexList facets;
        for (size_t f = 0; f < winners.size(); ++f) {
            if (winners[f] == binding)
                facets.append(int(f)); // ascending
        }
        if (facets.count() == 0)
            return;
        const QString name = bone->getName();
        m_mesh->deselectAllFacets();
        m_mesh->selectFacetsByIndexList(facets, true);
        m_mesh->createFaceGroup(name);
        m_mesh->addSelectedFacetsToGroup(name);
        m_map->addPair(name, bone, false);
        m_mesh->deselectAllFacets();
    }

    RyRef<RyFacetMesh> m_mesh;
    std::vector<RyBoneBinding *> m_bindings;
    RySelectionMap *m_map = nullptr;
};
