#pragma once

#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"

/// The global scene with one figure: a skin over a few vertices and bones that the test adds. Empty at both ends.
class FigureScene
{
public:
    explicit FigureScene(int vertices = 4)
    {
        reset();
        figure = new RyFigure;
        figure->setName(QStringLiteral("figure"));
        auto *mesh = new RyFacetMesh;
        std::vector<RyVec3> positions;
        for (int i = 0; i < vertices; ++i)
            positions.push_back({float(i), float(i * i), 1});
        mesh->setPositions(positions);
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        skin = new RySkinBinding;
        object->addModifier(skin);
        figure->setObject(object);
        figure->setSelectionMap(new RySelectionMap);
        ryScene()->addNode(figure);
    }
    ~FigureScene() { reset(); }

    /// A bone with a binding where `weight` is not negative: all vertices get that weight.
    RyBone *addBone(const QString &name, RyNode *parent, int weight)
    {
        auto *bone = new RyBone;
        bone->setName(name);
        parent->addNodeChild(bone);
        ryScene()->addNode(bone);
        if (weight >= 0) {
            auto *binding = new RyBoneBinding;
            binding->setBone(bone);
            auto *map = new RyWeightMap(name);
            const int count = figure->getObject()->getCurrentShape()->getGeometry()->getNumVertices();
            std::vector<int> indices;
            for (int i = 0; i < count; ++i)
                indices.push_back(i);
            map->setAffected(count, indices, std::vector<quint16>(size_t(count), quint16(weight)));
            binding->setWeights(map);
            skin->addBoneBinding(binding);
        }
        return bone;
    }

    QStringList boneNames() const
    {
        QStringList names;
        for (const RyBone *bone : figure->getAllBones())
            names << bone->getName();
        return names;
    }

    RyFigure *figure = nullptr;
    RySkinBinding *skin = nullptr;

private:
    static void reset()
    {
        ryUndoStack()->clearAll();
        ryScene()->clear();
    }
};
