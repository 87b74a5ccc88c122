#include "rycore/scene/node/RyNodeReplacement.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySelectionMemory.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"

#include <algorithm>
#include <unordered_set>

namespace {

void moveLinks(const RyPropertyGroup *from, const RyPropertyGroup *to)
{
    for (; from && to; from = from->getNextSibling(), to = to->getNextSibling()) {
        for (int i = 0; i < std::min(from->getNumProperties(), to->getNumProperties()); ++i) {
            const auto *before = qobject_cast<const RyFloatProperty *>(from->getProperty(i));
            auto *now = qobject_cast<RyFloatProperty *>(to->getProperty(i));
            if (!before || !now)
                continue;
            const std::vector<RyERCLink *> incoming = before->getControllerLinks();
            const std::vector<RyERCLink *> outgoing = before->getControlledLinks();
            for (RyERCLink *link : incoming) {
                RyFloatProperty *controller = link->getController();
                RyERCLink::remove(link);
                RyERCLink::create(controller, now);
            }
            for (RyERCLink *link : outgoing) {
                RyFloatProperty *controlled = link->getControlled();
                RyERCLink::remove(link);
                RyERCLink::create(now, controlled);
            }
        }
        moveLinks(from->getFirstChild(), to->getFirstChild());
    }
}

void cutLinksOf(const RyPropertyGroup *group, const std::unordered_set<const RyElement *> &going)
{
    for (; group; group = group->getNextSibling()) {
        for (int i = 0; i < group->getNumProperties(); ++i) {
            const auto *property = qobject_cast<const RyFloatProperty *>(group->getProperty(i));
            // What belongs to a morph goes along with the object.
            const std::vector<RyERCLink *> links = property && going.count(property->getOwner())
                                                       ? property->getControlledLinks()
                                                       : std::vector<RyERCLink *>();
            for (RyERCLink *link : links) {
                if (!going.count(link->getControlled()->getOwner()))
                    RyERCLink::remove(link);
            }
        }
        cutLinksOf(group->getFirstChild(), going);
    }
}

int placeInParent(const RyNode *node)
{
    const std::vector<RyNode *> siblings = node->getNodeParent()->nodeChildrenIterator();
    return int(std::find(siblings.begin(), siblings.end(), node) - siblings.begin());
}

} // namespace

void RyNodeReplacement::takePlace(RyNode *node, RyNode *with)
{
    with->setLabel(node->hasOwnLabel() ? node->getLabel() : QString());
    with->setHidden(node->isHidden());
    with->setSelectable(node->isSelectable());
    with->setPromoteSelection(node->isSelectionPromoted());
    with->setInheritScale(node->inheritsScale());
    with->setRotationOrder(node->getRotationOrder());
    with->copyPropertiesFrom(*node, true);
    if (RyNode *parent = node->getNodeParent()) {
        RySkeleton *skeleton = parent->getSkeleton();
        RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr;
        const QString group = map ? map->findGroupForNode(node) : QString();
        parent->addNodeChild(with, false, placeInParent(node));
        if (!group.isEmpty())
            map->addPair(group, with, true);
    }
    if (RyScene *scene = node->getScene())
        scene->addNode(with);
    moveLinks(node->getPropertyGroups(), with->getPropertyGroups());
    moveLinks(node->getPrivatePropertyGroups(), with->getPrivatePropertyGroups());
}

void RyNodeReplacement::moveObject(RyNode *from, RyNode *to)
{
    const RyRef<RyObject> object(from->getObject());
    from->setObject(nullptr);
    to->setObject(object.get());
}

void RyNodeReplacement::cutLinks(const std::vector<const RyElement *> &going)
{
    const std::unordered_set<const RyElement *> set(going.begin(), going.end());
    for (const RyElement *element : going) {
        cutLinksOf(element->getPropertyGroups(), set);
        cutLinksOf(element->getPrivatePropertyGroups(), set);
    }
}

std::vector<RyNode *> RyNodeReplacement::rememberSelection(RyScene *scene)
{
    if (!scene)
        return {};
    const std::vector<RyNode *> selection = scene->selectedNodeListIterator();
    ryUndoStack()->record<RySelectionMemory>({}, scene, selection, RySelectionMemory::End::Before);
    return selection;
}

void RyNodeReplacement::removeNode(RyNode *node, RyNode *with, const std::vector<RyNode *> &selectionBefore)
{
    RyScene *scene = node->getScene();
    if (!scene) {
        if (RyNode *parent = node->getNodeParent())
            parent->removeNodeChild(node);
        return;
    }
    std::vector<RyNode *> selection = selectionBefore;
    std::replace(selection.begin(), selection.end(), node, with);
    std::erase_if(selection, [node](const RyNode *each) { return each->isDescendantOf(node); });
    scene->removeNode(node);
    scene->setSelection(selection);
    ryUndoStack()->record<RySelectionMemory>({}, scene, scene->selectedNodeListIterator(),
                                             RySelectionMemory::End::After);
}
