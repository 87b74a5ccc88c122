#include "pluginsource/RyJointTools/operations/createControlBones.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <map>
#include <set>

namespace {

/// Whether one of the nodes is a bone above this one in its skeleton.
bool isBelowAny(const RyBone *bone, const std::set<const RyNode *> &nodes)
{
    const RySkeleton *skeleton = bone->getSkeleton();
    for (const RyNode *above = bone->getNodeParent(); above != skeleton; above = above->getNodeParent()) {
        if (qobject_cast<const RyBone *>(above) && nodes.count(above))
            return true;
    }
    return false;
}

void addBonesBelow(const RyNode *parent, std::vector<RyBone *> &list)
{
    for (RyNode *child : parent->nodeChildrenIterator()) {
        if (auto *bone = qobject_cast<RyBone *>(child)) {
            list.push_back(bone);
            addBonesBelow(bone, list);
        }
    }
}

/// Defaults and current values: a bone may have been moved since it was memorized, and its control bone lies on it.
void copyRest(const RyBone *source, RyBone *control)
{
    control->setRotationOrder(source->getRotationOrder());
    control->setOrigin(source->getOrigin(true), true);
    control->setOrigin(source->getOrigin());
    control->setEndPoint(source->getEndPoint(true), true);
    control->setEndPoint(source->getEndPoint());
    const auto copy = [](const RyFloatProperty *from, RyFloatProperty *to) {
        to->setDefaultValue(from->getDefaultValue());
        to->setValue(from->getValue());
    };
    copy(source->getOrientXControl(), control->getOrientXControl());
    copy(source->getOrientYControl(), control->getOrientYControl());
    copy(source->getOrientZControl(), control->getOrientZControl());
    // Below a scaled parent it would leave its bone otherwise.
    control->setInheritScale(source->inheritsScale());
}

void linkPoses(const RyBone *control, const RyBone *bone)
{
    const RyNodePose::Controls &controllers = control->poseControls();
    const RyNodePose::Controls &controlled = bone->poseControls();
    for (size_t i = 0; i < controllers.size(); ++i)
        RyERCLink::create(controllers[i], controlled[i]);
}

void moveFaceGroup(RyBone *bone, RyBone *control)
{
    RySelectionMap *map = bone->getSkeleton()->getSelectionMap();
    const QString group = map ? map->findGroupForNode(bone) : QString();
    if (!group.isEmpty())
        map->addPair(group, control, true);
}

void refreshBulgeNames(const RyBone *bone)
{
    const RySkinBinding *skin = RySkinBinding::findSkinFromNode(bone);
    const RyBoneBinding *binding = skin ? skin->findBoneBinding(bone) : nullptr;
    for (int axis = 0; binding && axis < 3; ++axis) {
        if (RyBulgeBinding *bulge = binding->getBulgeBinding(axis))
            bulge->updatePropertyNames();
    }
}

} // namespace

std::vector<RyBone *> listBonesToControl(const std::vector<RyNode *> &selection, const RySkeleton *skeleton,
                                         RyControlBoneMode mode)
{
    const std::set<const RyNode *> selected(selection.begin(), selection.end());
    std::vector<RyBone *> list;
    for (RyNode *node : selection) {
        auto *root = qobject_cast<RyBone *>(node);
        if (!root || !skeleton || root->getSkeleton() != skeleton || isBelowAny(root, selected))
            continue;
        if (mode == RyControlBoneMode::SelectedAndChildren)
            list.push_back(root);
        addBonesBelow(root, list);
    }
    return list;
}

int createControlBones(const std::vector<RyBone *> &bones, const QString &prefix)
{
    std::map<const RyNode *, RyBone *> controlOf;
    for (RyBone *bone : bones) {
        const QString name = prefix + bone->getName();
        if (bone->getName().startsWith(prefix) || bone->getSkeleton()->findBone(name))
            continue;
        auto *control = new RyBone;
        control->setName(name);
        control->setLabel(prefix + bone->getLabel());
        copyRest(bone, control);
        RyNode *parent = bone->getNodeParent();
        const auto above = controlOf.find(parent);
        (above == controlOf.end() ? parent : above->second)->addNodeChild(control, false);
        ryScene()->addNode(control);
        controlOf[bone] = control;
        linkPoses(control, bone);
        moveFaceGroup(bone, control);
        refreshBulgeNames(bone);
    }
    return int(controlOf.size());
}
