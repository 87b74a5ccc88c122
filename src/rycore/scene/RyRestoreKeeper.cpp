#include "rycore/scene/RyRestoreKeeper.h"

#include "rycore/base/RyRefCounted.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

namespace {

struct FigureState
{
    RyRef<RySkeleton> figure;
    RyRef<RySkeleton> followed;
    bool drawsBones;
};

} // namespace

std::function<void()> RyRestoreKeeper::keep()
{
    std::vector<RyRef<RyNode>> selection;
    for (RyNode *node : m_scene->selectedNodeListIterator())
        selection.emplace_back(node);
    std::vector<FigureState> figures;
    for (RySkeleton *figure : m_scene->getSkeletons()) {
        figures.push_back(
            {RyRef<RySkeleton>(figure), RyRef<RySkeleton>(figure->getFollowTarget()), figure->drawsGLBones()});
    }
    return [scene = m_scene, time = m_scene->getTime(), origins = m_scene->getOrigins(), selection, figures] {
        scene->setTime(time);
        if (scene->getOrigins() != origins)
            scene->setOrigins(origins);
        std::vector<RyNode *> nodes;
        for (const RyRef<RyNode> &node : selection)
            nodes.push_back(node.get());
        scene->setSelection(nodes);
        // Last: tools switch the drawing of bones when the selection changes.
        for (const FigureState &state : figures) {
            if (!state.figure)
                continue;
            state.figure->setFollowTarget(state.followed.get());
            state.figure->setDrawGLBones(state.drawsBones);
        }
    };
}
