#include "rycore/io/gltf/extras/RyGltfNodeSource.h"

#include "rycore/scene/RySkeleton.h"

bool ryDropsScale(const RyNode &node)
{
    for (const RyNode *at = &node; at && !qobject_cast<const RySkeleton *>(at); at = at->getNodeParent()) {
        if (!at->inheritsScale())
            return true;
    }
    return false;
}
