#pragma once

#include "tool/RyToolScene.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"

/// The posed scene of the tool tests whose figure has a mesh of four face groups. Of the groups the hip has one and the
/// left thigh another, one is for nobody, and one is in no pair.
struct RyGroupedScene : RyToolScene
{
    RyGroupedScene()
    {
        map = giveGroups(figure, hip, lThigh);
        lThigh->setLabel(QStringLiteral("Left Upper Leg"));
        pose();
        ryUndoStack()->clearAll();
    }
    /// Six vertices.
    static RySelectionMap *giveGroups(RyFigure *figure, RyBone *hip, RyBone *lThigh)
    {
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, 0}, {2, 1, 0}});
        mesh->setFacets({{{0, 1, 2, -1}}, {{0, 2, 3, -1}}, {{1, 4, 5, 2}}});
        for (const char *name : {"Pelvis", "lThigh", "free patch", "nobody's"})
            mesh->createFaceGroup(QString::fromLatin1(name));
        mesh->setGroupsOfFacets({2, 0, 1});
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        figure->setObject(object);
        auto *map = new RySelectionMap;
        map->addPair(QStringLiteral("nobody's"), nullptr, false);
        map->addPair(QStringLiteral("lThigh"), lThigh, false);
        map->addPair(QStringLiteral("Pelvis"), hip, false);
        figure->setSelectionMap(map);
        return map;
    }
    QString groupOf(const RyNode *node) const { return figure->getSelectionMap()->findGroupForNode(node); }

    RySelectionMap *map;
};
