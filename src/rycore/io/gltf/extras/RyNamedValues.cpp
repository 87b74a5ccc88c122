#include "rycore/io/gltf/extras/RyNamedValues.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/node/RyNodeLookup.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <array>

namespace {

constexpr const char *BulgeNames[4] = {"PosLeft", "NegLeft", "PosRight", "NegRight"};

const RyBoneBinding *bindingOf(const RyNode &node)
{
    const RySkinBinding *skin =
        qobject_cast<const RyBone *>(&node) ? RySkinBinding::findSkin(node.getSkeleton()) : nullptr;
    return skin ? skin->findBoneBinding(&node) : nullptr;
}

std::array<RyFloatProperty *, 4> controllersOf(const RyBulgeBinding &bulge)
{
    return {bulge.getPosLeftBulgeController(), bulge.getNegLeftBulgeController(), bulge.getPosRightBulgeController(),
            bulge.getNegRightBulgeController()};
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
                controllersOf(*bulge)[i]);
    }
}

std::vector<RyFloatProperty *> RyNamedValues::propertiesOf(const RyNode &node)
{
    std::vector<RyFloatProperty *> properties = RyNodeLookup::values(node);
    const RyBoneBinding *binding = bindingOf(node);
    for (int axis = 0; binding && axis < 3; ++axis) {
        if (const RyBulgeBinding *bulge = binding->getBulgeBinding(axis)) {
            const std::array<RyFloatProperty *, 4> controllers = controllersOf(*bulge);
            properties.insert(properties.end(), controllers.begin(), controllers.end());
        }
    }
    return properties;
}

void RyNamedValues::add(const QString &name, RyFloatProperty *property)
{
    const int number = m_counts[name]++;
    m_values.push_back({name, number, property});
    m_places.insert({name, number}, property);
}
