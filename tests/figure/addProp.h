#pragma once

#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"

/// A prop in the application's scene that shows a mesh: moved, turned and scaled, and below `parent` where one is
/// given.
inline RyNode *addProp(const QString &name, RyFacetMesh *mesh, RyNode *parent)
{
    auto *prop = new RyNode;
    prop->setName(name);
    auto *object = new RyObject;
    object->addShape(new RyFacetShape(mesh));
    prop->setObject(object);
    prop->getXTransControl()->setValue(3);
    prop->getYRotControl()->setValue(40);
    prop->getZScaleControl()->setValue(2);
    if (parent)
        parent->addNodeChild(prop);
    ryScene()->addNode(prop);
    return prop;
}
