#include "rycore/scene/node/RyNodeRigging.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/scene/RyPropertyTriple.h"

#include <algorithm>

namespace {

/// Texts that all nodes share.
struct Triples
{
    std::array<QString, 3> groups{QStringLiteral("Center Point"), QStringLiteral("End Point"),
                                  QStringLiteral("Orientation")};
    std::array<QString, 9> names;
    std::array<QString, 9> labels;

    Triples()
    {
        static const char *const ids[3] = {"origin", "end", "orient"};
        static const char *const kinds[3] = {"Center", "End", "Orientation"};
        for (size_t i = 0; i < names.size(); ++i) {
            const QLatin1Char axis(char('X' + int(i % 3)));
            names[i] = QLatin1String(ids[i / 3]) + axis;
            labels[i] = QLatin1String(kinds[i / 3]) + QLatin1Char(' ') + axis;
        }
    }
};

} // namespace

void RyNodeRigging::make(RyElement *owner, RyPropertyGroup *root)
{
    static const Triples triples;
    for (size_t triple = 0; triple < triples.groups.size(); ++triple) {
        RyPropertyGroup *group = root->addChild(triples.groups[triple]);
        for (size_t i = 3 * triple; i < 3 * triple + 3; ++i) {
            auto property = std::make_unique<RyFloatProperty>(owner, triples.names[i]);
            property->setLabel(triples.labels[i]);
            m_controls[i] = group->addProperty(std::move(property));
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
