#include "pluginsource/RyJointTools/operations/listRiggingProperties.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/skin/RySkinBinding.h"

static void addGroup(const RyPropertyGroup *group, std::vector<RyFloatProperty *> &list)
{
    if (!group)
        return;
    addGroup(group->getFirstChild(), list);
    for (int i = 0; i < group->getNumProperties(); ++i) {
        if (auto *property = qobject_cast<RyFloatProperty *>(group->getProperty(i)))
            list.push_back(property);
    }
    addGroup(group->getNextSibling(), list);
}

static void addBulges(const RyBoneBinding &binding, std::vector<RyFloatProperty *> &list)
{
    for (int axis = 0; axis < 3; ++axis) {
        const RyBulgeBinding *bulge = binding.getBulgeBinding(axis);
        if (!bulge)
            continue;
        for (RyFloatProperty *controller : {bulge->getNegLeftBulgeController(), bulge->getNegRightBulgeController(),
                                            bulge->getPosLeftBulgeController(), bulge->getPosRightBulgeController()}) {
            if (controller)
                list.push_back(controller);
        }
    }
}

std::vector<RyFloatProperty *> listRiggingProperties(const RyNode &node)
{
    std::vector<RyFloatProperty *> list;
    addGroup(node.getPrivatePropertyGroups(), list);
    const RySkinBinding *skin = RySkinBinding::findSkinFromNode(&node);
    if (const RyBoneBinding *binding = skin ? skin->findBoneBinding(&node) : nullptr)
        addBulges(*binding, list);
    return list;
}
