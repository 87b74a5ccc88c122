#include "rycore/figure/RyBoneRelease.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyModifier.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/node/RyNodeReplacement.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <algorithm>

namespace {

/// The skeleton and its bones, which go, and what hangs on them and stays.
void sortNodes(RySkeleton *skeleton, std::vector<RyNode *> &going, std::vector<RyNode *> &staying)
{
    going.push_back(skeleton);
    std::vector<RyNode *> pending = skeleton->nodeChildrenIterator();
    for (size_t i = 0; i < pending.size(); ++i) {
        RyNode *node = pending[i];
        if (!qobject_cast<RyBone *>(node)) {
            staying.push_back(node);
            continue;
        }
        going.push_back(node);
        const std::vector<RyNode *> children = node->nodeChildrenIterator();
        pending.insert(pending.end(), children.begin(), children.end());
    }
}

bool isMovedBy(const RyNode &node, const RySkeleton *skeleton)
{
    const std::vector<RyModifier *> modifiers =
        node.getObject() ? node.getObject()->getModifiers() : std::vector<RyModifier *>();
    return std::any_of(modifiers.begin(), modifiers.end(), [skeleton](const RyModifier *modifier) {
        const std::vector<RyNode *> bones = modifier->bones();
        return std::any_of(bones.begin(), bones.end(),
                           [skeleton](const RyNode *bone) { return bone && bone->getSkeleton() == skeleton; });
    });
}

/// Figures that this one's bones move: props that joined it.
std::vector<RySkeleton *> figuresJoinedTo(const RySkeleton *skeleton, const RyScene *scene)
{
    std::vector<RySkeleton *> joined;
    for (RySkeleton *other : scene ? scene->getSkeletons() : std::vector<RySkeleton *>()) {
        if (other != skeleton && isMovedBy(*other, skeleton))
            joined.push_back(other);
    }
    return joined;
}

/// The nodes, and what belongs to the modifiers of the skeleton's object.
std::vector<const RyElement *> withParts(const RySkeleton &skeleton, const std::vector<RyNode *> &nodes)
{
    std::vector<const RyElement *> all(nodes.begin(), nodes.end());
    for (const RyModifier *modifier :
         skeleton.getObject() ? skeleton.getObject()->getModifiers() : std::vector<RyModifier *>()) {
        const std::vector<const RyElement *> parts = modifier->parts();
        all.insert(all.end(), parts.begin(), parts.end());
    }
    return all;
}

} // namespace

RyNode *RySkeleton::convertFigureToProp(RySkeleton *skeleton, const QString &name)
{
    if (!skeleton)
        return nullptr;
    const RyRef<RySkeleton> guard(skeleton);
    RyUndoStackHold hold;
    RyScene *scene = skeleton->getScene();
    for (RySkeleton *joined : figuresJoinedTo(skeleton, scene)) {
        if (joined->getAllBones().empty())
            convertFigureToProp(joined, joined->getName()); // without their bones they are props again
        else                                                // what they held, its own first bone holds
            RyBoneRelease::release(*joined, skeleton->ownBones(), joined->getAllBones().front());
    }
    const std::vector<RyNode *> selection = RyNodeReplacement::rememberSelection(scene);
    std::vector<RyNode *> going;
    std::vector<RyNode *> staying;
    sortNodes(skeleton, going, staying);

    const RyRef<RyNode> prop(new RyNode);
    prop->setName(name);
    RyNodeReplacement::takePlace(skeleton, prop.get());
    RyNodeReplacement::cutLinks(withParts(*skeleton, going));
    for (RyNode *node : staying)
        prop->addNodeChild(node, node->getNodeParent() != skeleton);
    if (RyObject *object = skeleton->getObject()) {
        const std::vector<RyModifier *> modifiers = object->getModifiers();
        for (RyModifier *modifier : modifiers)
            object->removeModifier(modifier);
        RyNodeReplacement::moveObject(skeleton, prop.get());
    }
    for (RySkeleton *other : scene ? scene->getSkeletons() : std::vector<RySkeleton *>()) {
        if (other->getFollowTarget() == skeleton)
            other->setFollowTarget(nullptr);
    }
    RyNodeReplacement::removeNode(skeleton, prop.get(), selection);
    hold.accept(tr("Convert Figure to Prop"));
    return prop.get();
}
