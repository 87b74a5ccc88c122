#include "rycore/scene/RyBone.h"

RyBone::RyBone() = default;

RyOrientedBox3 RyBone::getOrientedBoundingBox() const
{
    RyOrientedBox3 oriented;
    oriented.box = boxInParameterSpace();
    return oriented;
}
