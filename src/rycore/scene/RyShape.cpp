#include "rycore/scene/RyShape.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyObject.h"

RyShape *RyShape::getCurrentShapeForNode(const RyNode *node)
{
    RyObject *object = node ? node->getObject() : nullptr;
    return object ? object->getCurrentShape() : nullptr;
}
