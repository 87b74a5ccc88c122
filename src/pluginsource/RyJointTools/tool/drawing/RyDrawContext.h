#pragma once

#include "pluginsource/RyJointTools/tool/display/RyJointToolDisplay.h"
#include "pluginsource/RyJointTools/tool/handles/RyBoneIndex.h"

#include "rycore/viewport/RyViewVolume.h"

class Ry3DViewport;
class RyNode;

/// What holds for one drawing of the tool. In the pick pass handles and bones are drawn in colours that are their ids,
/// and nothing else is drawn. Vertices are given in the world; what cannot be seen is left out.
struct RyDrawContext
{
    bool pickPass;
    int hoveredId;
    const RyJointToolDisplay &display;
    const RyNode *currentNode;
    const RyBoneIndex &bones;
    Ry3DViewport *viewport;
    RyViewVolume volume = RyViewVolume::ofContext();
};
