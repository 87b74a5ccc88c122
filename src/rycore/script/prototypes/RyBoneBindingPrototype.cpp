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

RyBulgeBinding *RyBoneBindingPrototype::getBulge(int axis) const
{
    const RyBoneBinding *binding = self<RyBoneBinding>();
    return binding ? binding->getBulgeBinding(axis) : nullptr;
}

RyBulgeBinding *RyBoneBindingPrototype::addBulge(int axis) const
{
    RyBoneBinding *binding = self<RyBoneBinding>();
    if (!binding)
        return nullptr;
    if (axis < 0 || axis > 2) {
        fail(tr("There is no axis %1, only 0, 1 and 2.").arg(axis));
        return nullptr;
    }
    if (!binding->getBulgeBinding(axis)) {
        binding->setBulgeBinding(axis, new RyBulgeBinding(axis));
        binding->getBulgeBinding(axis)->updatePropertyNames();
    }
    return binding->getBulgeBinding(axis);
}

void RyBoneBindingPrototype::removeBulge(int axis) const
{
    if (RyBoneBinding *binding = self<RyBoneBinding>())
        binding->setBulgeBinding(axis, nullptr);
}
