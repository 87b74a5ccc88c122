#include "pluginsource/RyJointTools/operations/changeRotationOrder.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyLegacyBendRays.h"
#include "rycore/figure/RyLegacyJointMaker.h"
#include "rycore/figure/RyLegacyParamNames.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"

#include <algorithm>
#include <utility>

namespace {

/// The plane of the last two axes, as curves code it.
int planeOf(const RyRotationOrder &order)
{
    return order[0] == 2 ? 3 : order[0] == 1 ? 4 : 5;
}

/// Takes the parameters that a bone drives from one rotation order to another.
class Reordering
{
public:
    Reordering(RyBone *bone, const RyRotationOrder &to) : m_bone(bone), m_from(bone->getRotationOrder()), m_to(to) {}

    void changeOwn(RyLegacyJoint &joint)
    {
        for (RyLegacyJointParam *param : driven(joint)) {
            if (isTwistOrBend(*param))
                reaxe(*param, RyLegacyParamNames::ofOwn(param->type(), newAxis(*param)));
        }
    }

    void changeOnParent(RyLegacyJoint &joint)
    {
        for (RyLegacyJointParam *param : driven(joint)) {
            if (param->type() == RyLegacyJointParam::Curve)
                param->setAxis(planeOf(m_to));
            else
                reaxe(*param, drivenName(*param));
        }
    }

    void changeOnChild(RyLegacyJoint &joint)
    {
        for (RyLegacyJointParam *param : driven(joint)) {
            if (param->type() == RyLegacyJointParam::SmoothScale)
                reaxe(*param, drivenName(*param));
        }
    }

    bool keptAngles() const { return m_keptAngles; }

private:
    static bool isTwistOrBend(const RyLegacyJointParam &param)
    {
        return param.type() == RyLegacyJointParam::Twist || param.type() == RyLegacyJointParam::Bend;
    }

    std::vector<RyLegacyJointParam *> driven(const RyLegacyJoint &joint) const
    {
        std::vector<RyLegacyJointParam *> list = joint.jointParamsIterator();
        std::erase_if(list, [this](const RyLegacyJointParam *param) { return param->getDriver() != m_bone; });
        return list;
    }

    int replacing(int axis) const
    {
        for (int i = 0; i < 3; ++i) {
            if (m_from[i] == axis)
                return m_to[i];
        }
        return axis;
    }

    /// Bends keep their place in the order, everything else is about the first axis.
    int newAxis(const RyLegacyJointParam &param) const
    {
        return param.type() == RyLegacyJointParam::Bend ? replacing(param.getAxis()) : m_to[0];
    }

    QString drivenName(const RyLegacyJointParam &param) const
    {
        return RyLegacyParamNames::ofDriven(param.type(), newAxis(param), m_bone);
    }

    void reaxe(RyLegacyJointParam &param, const QString &name)
    {
        const int before = param.getAxis();
        const int axis = newAxis(param);
        param.beginEdit();
        param.setAxis(axis);
        param.setName(name);
        if (axis != before) {
            moveValues(*param.getDynamicSphere());
            moveValues(*param.getStaticSphere());
        }
        if (auto *bend = dynamic_cast<RyLegacyBendParam *>(&param))
            changeAngles(*bend, before);
        param.finishEdit();
    }

    void moveValues(const RyLegacyJointSphere &sphere) const
    {
        constexpr size_t FirstOf[] = {3, 7}; // rotations, scales along the axes
        for (const size_t first : FirstOf) {
            std::pair<float, float> old[3];
            for (size_t axis = 0; axis < 3; ++axis) {
                const RyFloatProperty *control = sphere.controls()[first + axis];
                old[axis] = {control->getValue(), control->getDefaultValue()};
            }
            for (int axis = 0; axis < 3; ++axis) {
                RyFloatProperty *control = sphere.controls()[first + size_t(replacing(axis))];
                control->setDefaultValue(old[axis].second);
                control->adjustValue(old[axis].first);
            }
        }
    }

    void changeAngles(RyLegacyBendParam &bend, int axisBefore)
    {
        using Side = RyLegacyJointMaker::Side;
        for (const Side side : {Side::ByEndPoint, Side::ByDirection}) {
            const auto ofNewBone = [&](const RyRotationOrder &order, int axis) {
                return RyLegacyBendRays::ofNewBone(order[0], axis,
                                                   RyLegacyJointMaker::goesForward(*m_bone, order[0], side));
            };
            const RyLegacyBendRays before = ofNewBone(m_from, axisBefore);
            if (RyLegacyBendRays::of(bend).isNear(before)) {
                ofNewBone(m_to, bend.getAxis()).writeTo(bend, RyLegacyBendRays::of(bend, true).isNear(before));
                return;
            }
        }
        m_keptAngles |= bend.applyAngles();
    }

    RyBone *m_bone;
    RyRotationOrder m_from;
    RyRotationOrder m_to;
    bool m_keptAngles = false;
};

/// True when bend angles stayed as they were.
bool changeParams(RyBone *bone, const RyRotationOrder &order)
{
    Reordering reordering(bone, order);
    RyLegacyJoint *own = RyLegacyJoint::findJoint(bone);
    const RyRef<RyLegacyBinding> binding(RyLegacyBinding::bindingForChildOf(bone));
    if (binding)
        binding->beginEdit();
    if (own)
        reordering.changeOwn(*own);
    if (RyLegacyJoint *joint = RyLegacyJoint::findJoint(qobject_cast<RyBone *>(bone->getNodeParent())))
        reordering.changeOnParent(*joint);
    for (const RyNode *child : bone->nodeChildrenIterator()) {
        if (RyLegacyJoint *joint = RyLegacyJoint::findJoint(qobject_cast<const RyBone *>(child)))
            reordering.changeOnChild(*joint);
    }
    if (binding)
        binding->finishEdit();
    return reordering.keptAngles();
}

} // namespace

OrderChange changeRotationOrder(RyNode *node, const RyRotationOrder &order)
{
    if (!node || node->getRotationOrder() == order)
        return OrderChange::None;
    auto *bone = qobject_cast<RyBone *>(node);
    const bool keptAngles = bone && changeParams(bone, order);
    node->setRotationOrder(order);
    return keptAngles ? OrderChange::AnglesKept : OrderChange::Done;
}
