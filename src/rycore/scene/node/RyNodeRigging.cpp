#include "rycore/scene/node/RyNodeRigging.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/scene/RyPropertyTriple.h"

#include <algorithm>

void RyNodeRigging::make(RyElement *owner, RyPropertyGroup *root)
{
    static const struct
    {
        const char *name;
        const char *label;
    } groups[3] = {{"Center Point", "Center"}, {"End Point", "End"}, {"Orientation", "Orientation"}};
    static const char *const ids[3] = {"origin", "end", "orient"};
    for (int triple = 0; triple < 3; ++triple) {
        RyPropertyGroup *group = root->addChild(QLatin1String(groups[triple].name));
        for (int axis = 0; axis < 3; ++axis) {
            const QString name = QLatin1String(ids[triple]) + QLatin1Char(char('X' + axis));
            auto property = std::make_unique<RyFloatProperty>(owner, name);
            property->setLabel(QLatin1String(groups[triple].label) + QLatin1Char(' ') + QLatin1Char(char('X' + axis)));
            m_controls[size_t(3 * triple + axis)] = group->addProperty(std::move(property));
        }
    }
}

bool RyNodeRigging::contains(const RyFloatProperty *property) const
{
    return std::find(begin(), end(), property) != end();
}

bool RyNodeRigging::isInMaps(const RyFloatProperty *property) const
{
    return std::find(begin() + End, begin() + Orientation, property) == begin() + Orientation;
}

RyVec3 RyNodeRigging::read(Triple triple, bool byDefault) const
{
    return exists() ? RyPropertyTriple::read(begin() + triple, byDefault) : RyVec3();
}

RyQuat RyNodeRigging::orientation(bool byDefault) const
{
    return RyQuat::fromEulerXYZ(read(Orientation, byDefault));
}

void RyNodeRigging::write(Triple triple, const RyVec3 &v, Write how)
{
    if (!exists())
        return;
    for (int axis = 0; axis < 3; ++axis) {
        RyFloatProperty *control = m_controls[size_t(triple + axis)];
        if (how == Write::DefaultAndCurrent)
            control->setDefaultValue(v[axis]);
        if (how == Write::Adjust)
            control->adjustValue(v[axis]);
        else
            control->setValue(v[axis]);
    }
}
