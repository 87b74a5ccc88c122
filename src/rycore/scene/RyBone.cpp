#include "rycore/scene/RyBone.h"

RyBone::RyBone() = default;
