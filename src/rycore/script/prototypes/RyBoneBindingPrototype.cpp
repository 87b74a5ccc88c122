#include "rycore/script/prototypes/RyBoneBindingPrototype.h"

RyBone *RyBoneBindingPrototype::getBone() const
{
    const RyBoneBinding *binding = self<RyBoneBinding>();
    return binding ? binding->getBone() : nullptr;
}

RyWeightMap *RyBoneBindingPrototype::getWeights() const
{
    const RyBoneBinding *binding = self<RyBoneBinding>();
    return binding ? binding->getWeights() : nullptr;
}

RyWeightMap *RyBoneBindingPrototype::getLocalWeights(int axis) const
{
    const RyBoneBinding *binding = self<RyBoneBinding>();
    return binding ? binding->getLocalWeights(axis) : nullptr;
}

RyWeightMap *RyBoneBindingPrototype::getScaleWeights() const
{
    const RyBoneBinding *binding = self<RyBoneBinding>();
    return binding ? binding->getScaleWeights() : nullptr;
}
