#include "rycore/script/prototypes/RySkinPrototype.h"

int RySkinPrototype::getNumBoneBindings() const
{
    const RySkinBinding *skin = self<RySkinBinding>();
    return skin ? skin->getNumBoneBindings() : 0;
}

QScriptValue RySkinPrototype::getBoneBindings() const
{
    const RySkinBinding *skin = self<RySkinBinding>();
    return toArray(skin ? skin->bindings() : std::vector<RyBoneBinding *>());
}

RyBoneBinding *RySkinPrototype::findBoneBinding(RyNode *bone) const
{
    const RySkinBinding *skin = self<RySkinBinding>();
    return skin ? skin->findBoneBinding(bone) : nullptr;
}

bool RySkinPrototype::hasLocalMaps() const
{
    const RySkinBinding *skin = self<RySkinBinding>();
    return skin && skin->hasLocalMaps();
}

bool RySkinPrototype::hasGeneralMaps() const
{
    const RySkinBinding *skin = self<RySkinBinding>();
    return skin && skin->hasGeneralMaps();
}
