#include "pluginsource/RyJointTools/operations/normalizeWeights.h"

#include "rycore/skin/RySkinBinding.h"

void normalizeWeights(RySkinBinding *skin)
{
    skin->normalize(0, RySkinBinding::AllWeights, false);
}
