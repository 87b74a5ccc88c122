#include "rycore/io/gltf/extras/RyNamedValues.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/parametric/RyLegacyJoint.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/node/RyNodeLookup.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

namespace {

constexpr const char *BulgeNames[4] = {"PosLeft", "NegLeft", "PosRight", "NegRight"};

const RyBoneBinding *bindingOf(const RyNode &node)
{
    const RySkinBinding *skin =
        qobject_cast<const RyBone *>(&node) ? RySkinBinding::findSkin(node.getSkeleton()) : nullptr;
    return skin ? skin->findBoneBinding(&node) : nullptr;
}

/// Calls `work(parameter, property)` for the values of the parameters of a bone's joint.
template<typename Work>
void forJointValues(const RyNode &node, const Work &work)
{
    const RyLegacyJoint *joint = qobject_cast<const RyBone *>(&node) ? RyLegacyJoint::findJoint(&node) : nullptr;
    for (const RyLegacyJointParam *param : joint ? joint->params() : std::vector<RyLegacyJointParam *>()) {
        for (const RyLegacyJointSphere *sphere : {param->getDynamicSphere(), param->getStaticSphere()}) {
            for (RyFloatProperty *control : sphere->controls())
                work(*param, control);
        }
        for (RyFloatProperty *controller : param->controllers())
            work(*param, controller);
    }
}

} // namespace

RyNamedValues::RyNamedValues(const RyNode &node)
{
    for (RyFloatProperty *property : RyNodeLookup::values(node))
        add(property->getName(), property);
    const RyBoneBinding *binding = bindingOf(node);
    for (int axis = 0; binding && axis < 3; ++axis) {
        const RyBulgeBinding *bulge = binding->getBulgeBinding(axis);
        for (size_t i = 0; bulge && i < 4; ++i)
            add(QStringLiteral("bulge%1%2").arg(QLatin1Char(char('X' + axis))).arg(BulgeNames[i]),
                bulge->controllers()[i]);
    }
    forJointValues(node, [this](const RyLegacyJointParam &param, RyFloatProperty *property) {
        add(param.getName() + QLatin1Char('/') + property->getName(), property);
    });
}

bool RyNamedValues::isKeptRaw(const RyFloatProperty &property)
{
    return qobject_cast<const RyLegacyJointParam *>(property.getOwner()) ||
           qobject_cast<const RyLegacyJointSphere *>(property.getOwner());
}

std::vector<RyFloatProperty *> RyNamedValues::propertiesOf(const RyNode &node)
{
    std::vector<RyFloatProperty *> properties = RyNodeLookup::values(node);
    const RyBoneBinding *binding = bindingOf(node);
    for (int axis = 0; binding && axis < 3; ++axis) {
        if (const RyBulgeBinding *bulge = binding->getBulgeBinding(axis))
            properties.insert(properties.end(), bulge->controllers().begin(), bulge->controllers().end());
    }
    forJointValues(
        node, [&properties](const RyLegacyJointParam &, RyFloatProperty *property) { properties.push_back(property); });
    return properties;
}

void RyNamedValues::add(const QString &name, RyFloatProperty *property)
{
    const int number = m_counts[name]++;
    m_values.push_back({name, number, property});
    m_places.insert({name, number}, property);
}
