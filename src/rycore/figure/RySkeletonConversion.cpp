#include "rycore/figure/RyLegacyBoneRemoval.h"
#include "rycore/mesh/ryAddWeights.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyModifier.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/node/RyNodeReplacement.h"
#include "rycore/skin/RySkinBinding.h"
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

/// The weights, but no bulges: these push away from the line of the bone that goes.
void giveWeights(const RyBoneBinding &from, RyBoneBinding &to)
{
    const auto give = [](RyWeightMap *source, RyWeightMap *target, const auto &set) {
        if (source && !target)
            set(source->copy());
        else
            ryAddWeights(source, target);
    };
    give(from.getWeights(), to.getWeights(), [&to](RyWeightMap *map) { to.setWeights(map); });
    give(from.getScaleWeights(), to.getScaleWeights(), [&to](RyWeightMap *map) { to.setScaleWeights(map); });
    for (int axis = 0; axis < 3; ++axis) {
        give(from.getLocalWeights(axis), to.getLocalWeights(axis),
             [&to, axis](RyWeightMap *map) { to.setLocalWeights(map, axis); });
    }
}

/// What bones of a figure held that goes, the first bone of its own holds from then on.
void keepVertices(const RySkeleton &figure, const RySkeleton *going)
{
    RySkinBinding *skin = RySkinBinding::findSkin(&figure);
    if (!skin)
        return;
    RyBone *own = figure.getAllBones().front();
    RyBoneBinding *receiver = skin->findBoneBinding(own);
    for (RyBoneBinding *binding : skin->boneBindingIterator()) {
        if (!binding->getBone() || binding->getBone()->getSkeleton() != going)
            continue;
        if (!receiver) {
            receiver = new RyBoneBinding;
            receiver->setBone(own);
            skin->addBoneBinding(receiver);
        }
        giveWeights(*binding, *receiver);
        skin->removeBoneBinding(binding);
    }
    skin->normalize(0, RySkinBinding::AllWeights, false);
}

/// A figure with bones of its own stays one, without those that go.
void releaseFigure(const RySkeleton &figure, const RySkeleton *going)
{
    keepVertices(figure, going);
    const std::vector<RyBone *> bones = going->getAllBones();
    for (RyBone *bone : RyLegacyBinding::findBinding(&figure) ? bones : std::vector<RyBone *>())
        RyLegacyBoneRemoval(bone).removeLegacyJoint();
    RySelectionMap *map = figure.getSelectionMap();
    for (const RyBone *bone : map ? bones : std::vector<RyBone *>()) {
        for (int pair = map->findPair(bone); pair >= 0; pair = map->findPair(bone))
            map->removePair(pair);
    }
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
        else
            releaseFigure(*joined, skeleton);
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
