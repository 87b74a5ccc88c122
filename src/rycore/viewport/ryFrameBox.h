#pragma once

#include "rycore/math/RyBox3.h"

class RyScene;

/// What a view of the whole scene, or of the selection where there is one, has to show: meshes as they are deformed and
/// bones, with some room around selected ones. In the world; hidden nodes left out.
RyBox3 ryFrameBox(const RyScene &scene, bool selectionOnly);
