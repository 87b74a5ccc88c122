#pragma once

#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"

/// A prop of one facet that is selected in the scene while this lives. Its first vertex stands at a height of 100, and
/// morphs lift it by 10.
class FaceProp
{
public:
    explicit FaceProp(RyScene *scene) : m_scene(scene), m_node(new RyNode)
    {
        m_node->setName(QStringLiteral("face"));
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{0, 100, 0}, {30, 100, 0}, {0, 130, 0}});
        mesh->setFacets({{{0, 1, 2, -1}}});
        m_shape = new RyFacetShape(mesh);
        auto *object = new RyObject;
        object->addShape(m_shape);
        m_node->setObject(object);
        scene->addNode(m_node);
        scene->setSelection({m_node});
    }
    ~FaceProp() { m_scene->removeNode(m_node); }
    FaceProp(const FaceProp &) = delete;
    FaceProp &operator=(const FaceProp &) = delete;

    RyNode *node() const { return m_node; }
    RyFacetShape *shape() const { return m_shape; }
    void addMorph(const QString &name) { m_shape->addMorph(new RyMorph(name, {0}, {{0, 10, 0}})); }

private:
    RyScene *m_scene;
    RyNode *m_node;
    RyFacetShape *m_shape;
};
