#include "rycore/viewport/ryFrameBox.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"

#include <algorithm>

RyBox3 ryFrameBox(const RyScene &scene, bool selectionOnly)
{
    RyBox3 box;
    const bool selection = selectionOnly && scene.getNumSelectedNodes() > 0;
    for (RyNode *node : selection ? scene.selectedNodeListIterator() : scene.getNodes()) {
        if (!node->isVisible())
            continue;
        if (node->getObject()) {
            const RyAffine &map = node->worldMap();
            for (const RyVec3 &p : node->getObject()->getDeformedPositions())
                box.include(map.mapPoint(p));
        } else if (qobject_cast<RyBone *>(node)) {
            const RyVec3 a = node->getWSPos();
            const RyVec3 b = node->getWSEndPoint();
            const float margin = selection ? std::max((b - a).length() * 0.75f, 1.0f) : 0.0f;
            for (const RyVec3 &p : {a, b}) {
                box.include(p + RyVec3(margin, margin, margin));
                box.include(p - RyVec3(margin, margin, margin));
            }
        } else if (selection) {
            for (RyNode *child : node->nodeChildrenIterator())
                box.include(child->getWSPos());
        }
    }
    return box;
}
