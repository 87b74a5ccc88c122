#include "rycore/parametric/RyLegacyParamPair.h"

#include "rycore/base/RyFloatProperty.h"

#include <algorithm>

using Param = RyLegacyJointParam;

RyLegacyParamPair::RyLegacyParamPair(Param *param, Param *partner)
    : m_param(param), m_partner(param && partner && partner->type() == param->type() ? partner : nullptr)
{}

RyLegacyParamPair::RyLegacyParamPair(Param *param) : RyLegacyParamPair(param, param ? param->findPartner() : nullptr) {}

bool RyLegacyParamPair::isFlagSet(Param::Flag flag, bool on) const
{
    const auto is = [&](const Param *param) { return !param || bool(param->flags() & flag) == on; };
    return is(m_param) && is(m_partner);
}

bool RyLegacyParamPair::setFlag(Param::Flag flag, bool on) const
{
    if (!m_param || isFlagSet(flag, on))
        return false;
    m_param->beginEdit();
    for (Param *param : {m_param, m_partner}) {
        if (param)
            param->setFlags(on ? param->flags() | flag : param->flags() & ~unsigned(flag));
    }
    m_param->finishEdit();
    return true;
}

std::vector<RyFloatProperty *> RyLegacyParamPair::both(RyFloatProperty *value) const
{
    std::vector<RyFloatProperty *> values{value};
    if (RyFloatProperty *other = m_partner ? partnersOne(value) : nullptr)
        values.push_back(other);
    return values;
}

template<typename List>
static size_t indexIn(const List &list, const RyFloatProperty *value)
{
    return size_t(std::find(list.begin(), list.end(), value) - list.begin());
}

RyFloatProperty *RyLegacyParamPair::partnersOne(const RyFloatProperty *value) const
{
    const std::vector<RyFloatProperty *> &controllers = m_param->controllers();
    const size_t index = indexIn(controllers, value);
    if (index < controllers.size()) {
        // High start, high end, low start, low end: mirrored they stand in the reverse order.
        const bool isCrosswise = m_param->type() == Param::SmoothScale;
        return m_partner->controllers()[isCrosswise ? controllers.size() - 1 - index : index];
    }
    for (const auto sphere : {&Param::getDynamicSphere, &Param::getStaticSphere}) {
        const auto &controls = (m_param->*sphere)()->controls();
        const size_t place = indexIn(controls, value);
        if (place < controls.size())
            return (m_partner->*sphere)()->controls()[place];
    }
    return nullptr;
}
