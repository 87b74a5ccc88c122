#include "addProp.h"

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"

RyNode *ryAddProp(RyNode *above, const QString &name)
{
    auto *mesh = new RyFacetMesh;
    mesh->setPositions({{0, 0, 0}, {6, 0, 0}, {0, 7, 0}, {1, 2, 8}});
    mesh->setFacets({{{0, 1, 2, -1}, -1}, {{0, 3, 1, -1}, -1}});
    auto *object = new RyObject;
    object->setName(name);
    object->addShape(new RyFacetShape(mesh));
    auto *prop = new RyNode;
    prop->setName(name);
    prop->setObject(object);
    above->addNodeChild(prop);
    ryScene()->addNode(prop);
    return prop;
}
