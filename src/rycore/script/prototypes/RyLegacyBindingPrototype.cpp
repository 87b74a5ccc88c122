#include "rycore/script/prototypes/RyLegacyBindingPrototype.h"

int RyLegacyBindingPrototype::getNumJoints() const
{
    const auto *binding = self<RyLegacyBinding>();
    return binding ? int(binding->joints().size()) : 0;
}

QScriptValue RyLegacyBindingPrototype::getJoints() const
{
    const auto *binding = self<RyLegacyBinding>();
    return toArray(binding ? binding->joints() : std::vector<RyLegacyJoint *>());
}

RyLegacyJoint *RyLegacyBindingPrototype::findJoint(RyNode *bone) const
{
    const auto *binding = self<RyLegacyBinding>();
    return binding ? binding->findJoint(bone) : nullptr;
}
