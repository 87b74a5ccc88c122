#pragma once

#include "support/RyMapOf.h"
#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"

/// The application's scene with a figure that has been worked on: moved, turned, scaled and bent. Its mesh is a strip,
/// six quads and a triangle at the end, in the groups "upper" (0 to 2), "lower" (3 to 5) and the empty "nothing"; the
/// triangle is in none. No bone has weights yet.
///
///     0 - 1 - 2 - 3 - 4 - 5 - 6        figure - root - arm - hand
///     | 0 | 1 | 2 | 3 | 4 | 5 | > 14                 - leg
///     7 - 8 - 9 - 10- 11- 12- 13
struct RyGroupedFigure
{
    RyGroupedFigure() : figure(new RyFigure), object(new RyObject), mesh(new RyFacetMesh), skin(new RySkinBinding)
    {
        figure->setName(QStringLiteral("figure"));
        root = addBone(figure, "root");
        arm = addBone(root, "arm");
        hand = addBone(arm, "hand");
        leg = addBone(root, "leg");
        fillMesh();
        object->addShape(new RyFacetShape(mesh));
        object->addModifier(skin);
        figure->setObject(object);
        figure->getScaleControl()->setValue(1.25f);
        figure->getYRotControl()->setValue(40.0f);
        figure->getXTransControl()->setValue(-7.0f);
        arm->getZRotControl()->setValue(33.0f);
        arm->setOrigin({1, 2, 3});
        ryScene()->addNode(figure);
    }
    ~RyGroupedFigure()
    {
        ryScene()->clear();
        ryUndoStack()->clearAll();
    }

    RyBone *addBone(RyNode *parent, const char *name) const
    {
        auto *bone = new RyBone;
        bone->setName(QString::fromLatin1(name));
        bone->setLabel(QStringLiteral("The %1").arg(QLatin1String(name)));
        parent->addNodeChild(bone);
        return bone;
    }
    /// A binding with a general map; `weights` for as many vertices as it has, zero for the others.
    RyBoneBinding *bind(RyBone *bone, std::vector<quint16> weights) const
    {
        auto *binding = new RyBoneBinding;
        binding->setBone(bone);
        weights.resize(std::max(weights.size(), size_t(mesh->getNumVertices())), 0);
        binding->setWeights(ryMapOf(weights));
        skin->addBoneBinding(binding);
        return binding;
    }
    /// The same weight for the vertices above and below each number.
    RyBoneBinding *bindColumns(RyBone *bone, const std::vector<int> &columns, quint16 weight) const
    {
        std::vector<quint16> weights(15, 0);
        for (const int column : columns)
            weights[size_t(column)] = weights[size_t(column + 7)] = weight;
        return bind(bone, weights);
    }
    /// Pairs as "group bone", in their order; a null list without a map.
    QStringList pairs() const
    {
        QStringList texts;
        const RySelectionMap *map = figure->getSelectionMap();
        for (int i = 0; map && i < map->getNumPairs(); ++i) {
            const RyNode *node = map->getPairNode(i);
            texts.append(map->getPairGroup(i) + ' ' + (node ? node->getName() : QStringLiteral("-")));
        }
        return texts;
    }
    /// Groups as "name: facets", in their order.
    QStringList groups() const
    {
        QStringList texts;
        for (int g = 0; g < mesh->getNumFaceGroups(); ++g) {
            QString text = mesh->getFaceGroup(g)->getName() + ':';
            for (int i = 0; i < mesh->getFaceGroup(g)->getFacets().count(); ++i)
                text += QStringLiteral(" %1").arg(mesh->getFaceGroup(g)->getFacets().getIndex(i));
            texts.append(text);
        }
        return texts;
    }
    void addPair(const char *group, RyNode *node) const
    {
        if (!figure->getSelectionMap())
            figure->setSelectionMap(new RySelectionMap);
        QVERIFY(figure->getSelectionMap()->addPair(QString::fromLatin1(group), node, false));
    }
    QString dump() const { return rySceneDump(*ryScene()); }

    RyFigure *figure;
    RyObject *object;
    RyFacetMesh *mesh;
    RySkinBinding *skin;
    RyBone *root;
    RyBone *arm;
    RyBone *hand;
    RyBone *leg;

private:
    void fillMesh() const
    {
        std::vector<RyVec3> positions;
        for (int row = 0; row < 2; ++row) {
            for (int i = 0; i < 7; ++i)
                positions.emplace_back(10.0f * float(i), -5.0f * float(row), 0.0f);
        }
        positions.emplace_back(70.0f, -2.0f, 0.0f);
        mesh->setPositions(positions);
        std::vector<RyFacet> facets;
        for (int i = 0; i < 6; ++i)
            facets.push_back({{i, i + 7, i + 8, i + 1}, -1});
        facets.push_back({{6, 13, 14, -1}, -1});
        mesh->setFacets(facets);
        for (const char *name : {"upper", "lower", "nothing"})
            mesh->createFaceGroup(QString::fromLatin1(name));
        mesh->setGroupsOfFacets({0, 0, 0, 1, 1, 1, -1});
    }
};
