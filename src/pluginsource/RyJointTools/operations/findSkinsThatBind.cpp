#include "pluginsource/RyJointTools/operations/findSkinsThatBind.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>

std::vector<RySkinBinding *> findSkinsThatBind(const RyBone *bone)
{
    std::vector<RySkinBinding *> skins;
    const auto add = [&](RySkinBinding *skin) {
        if (skin && skin->findBoneBinding(bone) && std::find(skins.begin(), skins.end(), skin) == skins.end())
            skins.push_back(skin);
    };
    add(RySkinBinding::findSkinFromNode(bone->getNodeParent()));
    add(RySkinBinding::findSkinFromNode(bone));
    for (const RySkeleton *skeleton : ryScene()->getSkeletons())
        add(RySkinBinding::findSkin(skeleton));
    return skins;
}
