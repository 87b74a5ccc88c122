#include "pluginsource/RyJointTools/operations/bakePose.h"

#include "pluginsource/RyJointTools/operations/RyBakedBones.h"
#include "pluginsource/RyJointTools/operations/RyBakedShape.h"
#include "pluginsource/RyJointTools/operations/RyHeldValues.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyExactRiggingEdit.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>
#include <unordered_set>

namespace {

/// The shapes that follow some of the bones, in the order of their figures.
class BakedShapes
{
public:
    explicit BakedShapes(const std::vector<RyBone *> &bones) : m_cleared(bones.begin(), bones.end()) {}

    /// False where a skin refuses.
    bool take(RySkeleton *skeleton)
    {
        RySkinBinding *skin = RySkinBinding::findSkin(skeleton);
        RyBakedShape shape(qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(skeleton)), skin);
        if (!shape.take())
            return false;
        const bool isCleared = isAll(*skin, true);
        (isCleared ? m_cleaned : m_mixed).push_back(std::move(shape));
        return true;
    }
    /// Those of other figures, which bones of this one move as well.
    bool takeOthers(const RyFigure *figure)
    {
        const RyScene *scene = figure->getScene();
        for (RySkeleton *other : scene ? scene->getSkeletons() : std::vector<RySkeleton *>()) {
            const RySkinBinding *skin = other == figure ? nullptr : RySkinBinding::findSkin(other);
            const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(other));
            if (skin && shape && shape->getFacetMesh() && !isAll(*skin, false) && !take(other))
                return false;
        }
        return true;
    }

    void installBeforeBones()
    {
        for (RyBakedShape &shape : m_cleaned)
            shape.installShown();
    }
    void installAfterBones()
    {
        for (RyBakedShape &shape : m_mixed)
            shape.installBelowPose();
    }

private:
    /// Whether all of its bones are, or none is, among those whose pose goes.
    bool isAll(const RySkinBinding &skin, bool areCleared) const
    {
        const std::vector<RyBoneBinding *> &bindings = skin.bindings();
        return std::all_of(bindings.begin(), bindings.end(), [&](const RyBoneBinding *binding) {
            return !binding->getBone() || (m_cleared.count(binding->getBone()) > 0) == areCleared;
        });
    }

    std::unordered_set<const RyBone *> m_cleared;
    std::vector<RyBakedShape> m_cleaned, m_mixed;
};

/// What hangs on bones and is none, with where it stands in the world.
class HungNodes
{
public:
    explicit HungNodes(const std::vector<RyBone *> &bones)
    {
        for (const RyBone *bone : bones) {
            for (RyNode *child : bone->nodeChildrenIterator()) {
                if (!qobject_cast<const RyBone *>(child))
                    m_nodes.push_back({child, child->worldMap()});
            }
        }
    }

    /// Puts them back there, as far as their pose controls can say it.
    void restore() const
    {
        for (const Hung &hung : m_nodes)
            hung.node->adjustLocalMap(hung.world * hung.node->getNodeParent()->worldMap().inverse());
    }

private:
    struct Hung
    {
        RyNode *node;
        RyAffine world;
    };
    std::vector<Hung> m_nodes;
};

} // namespace

bool bakePose(RyFigure *figure)
{
    const RySkinBinding *skin = figure ? figure->getSkinBinding() : nullptr;
    const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure));
    if (!skin || !shape || !shape->getFacetMesh())
        return false;
    const RyBakedBones bones(*figure);
    if (!bones.areConnected())
        return false;
    if (!bones.isPosed())
        return true;
    BakedShapes shapes(bones.bones());
    if (!shapes.take(figure) || !shapes.takeOthers(figure))
        return false;
    RyHeldValues values;
    bones.hold(values);
    values.addControlledBy(bones.bones());
    const HungNodes hung(bones.bones());
    const RyExactRiggingEdit edit;
    shapes.installBeforeBones();
    bones.apply();
    values.apply();
    shapes.installAfterBones();
    hung.restore();
    return true;
}
