#include "pluginsource/RyJointTools/operations/mirrorBones.h"

#include "pluginsource/RyJointTools/operations/mirrorNode.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/adjustValues.h"
#include "rycore/figure/RyExactRiggingEdit.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"

#include <QHash>
#include <QSet>

namespace {

RySide otherSide(RySide side)
{
    return side == RySide::Left ? RySide::Right : side == RySide::Right ? RySide::Left : RySide::None;
}

/// Where the run begins; null for nowhere.
RyNode *rootOf(RyNode *primary, RyNode *opposite, RySide side, MirrorOptions::Direction direction)
{
    switch (direction) {
    case MirrorOptions::SelectedToOpposite:
        return primary;
    case MirrorOptions::OppositeToSelected:
        return opposite;
    case MirrorOptions::LeftToRight:
        return side == RySide::Left ? primary : side == RySide::Right ? opposite : nullptr;
    case MirrorOptions::RightToLeft:
        return side == RySide::Left ? opposite : side == RySide::Right ? primary : nullptr;
    }
    return nullptr;
}

RySide sideOf(RySide primary, MirrorOptions::Direction direction)
{
    switch (direction) {
    case MirrorOptions::SelectedToOpposite:
        return primary;
    case MirrorOptions::OppositeToSelected:
        return otherSide(primary);
    case MirrorOptions::LeftToRight:
        return RySide::Left;
    case MirrorOptions::RightToLeft:
        return RySide::Right;
    }
    return RySide::None;
}

/// What the values of a run result in, read before anything is written: links pass values on between the nodes of a
/// run.
class MirroredValues
{
public:
    void take(const std::vector<MirroredControl> &controls)
    {
        std::vector<float> read;
        for (const MirroredControl &each : controls)
            read.push_back(each.reflected(m_values.value(each.from, each.from->getValue())));
        for (size_t i = 0; i < controls.size(); ++i) {
            if (!m_values.contains(controls[i].to))
                m_order.push_back(controls[i].to);
            m_values.insert(controls[i].to, read[i]);
        }
    }
    std::vector<RyWantedValue> wanted() const
    {
        std::vector<RyWantedValue> wanted;
        for (RyFloatProperty *property : m_order)
            wanted.push_back({property, m_values.value(property)});
        return wanted;
    }

private:
    QHash<const RyFloatProperty *, float> m_values;
    std::vector<RyFloatProperty *> m_order;
};

} // namespace

MirrorPlan planMirror(RyNode *primary, const RyBonePairing &pairing, const MirrorOptions &options)
{
    const RySide side = pairing.sideOf(primary);
    RyNode *found = pairing.oppositeOf(primary);
    RyNode *root = rootOf(primary, found ? found : primary, side, options.direction);
    MirrorPlan plan;
    plan.side = sideOf(side, options.direction);
    if (options.nodes == MirrorOptions::RootRecursive) {
        plan.nodes = pairing.nodes();
        return plan;
    }
    if (options.nodes == MirrorOptions::SelectedRecursive) {
        root = root ? root : primary;
        root->getNodeChildren(plan.nodes, true);
    }
    if (root)
        plan.nodes.push_back(root);
    return plan;
}

MirrorReport mirrorBones(RyNode *primary, const MirrorOptions &options,
                         const std::function<bool(RyNode *source, RyNode *target, int axis)> &copy)
{
    const RySkeleton *skeleton = primary->getSkeleton();
    const RyBonePairing pairing(*skeleton, options.axis, options.prefixes);
    const MirrorPlan plan = planMirror(primary, pairing, options);
    MirrorReport report;
    report.offset = pairing.size() > 0.0f ? pairing.meanOffset() / pairing.size() : 0.0f;
    QSet<const RyNode *> written;
    MirroredValues values;
    for (RyNode *node : plan.nodes) {
        if (const RyNode *target = pairing.oppositeOf(node, plan.side))
            values.take(mirroredControls(*node, *target, options.axis));
    }
    const RyExactRiggingEdit edit;
    for (RyNode *node : plan.nodes) {
        RyNode *target = pairing.oppositeOf(node, plan.side);
        if (target) {
            const bool isComplete = copy(node, target, options.axis);
            if (!written.contains(node))
                report.copied.push_back({node, target, pairing.stageOf(node), !isComplete});
            written.insert(target);
        } else if (pairing.stageOf(node) == RyBonePairing::Stage::None && qobject_cast<RyBone *>(node)) {
            report.skipped.push_back(node);
        }
    }
    adjustValues(values.wanted()); // what a link passed on from a node that was written later
    return report;
}
