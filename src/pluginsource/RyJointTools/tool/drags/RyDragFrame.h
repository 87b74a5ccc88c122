#pragma once

#include "rycore/math/RyMatrix4.h"
#include "rycore/math/RyQuat.h"
#include "rycore/math/RyVec3.h"
#include "rycore/viewport/Ry3DViewport.h"

#include <QPointer>

/// What a press records for the drag that follows, in world space.
struct RyDragFrame
{
    RyVec3 jointCenter;
    RyVec3 dynamicCenter;
    RyVec3 staticCenter;
    RyVec3 axes[3];
    RyVec3 dynamicAxes[3];
    RyVec3 staticAxes[3];
    RyVec3 references[2]; // directions that signed angles are measured against
    RyVec3 pressVector;
    RyVec3 currentVector;
    RyMatrix4 startDynamicMatrix;
    RyMatrix4 startStaticMatrix;
    RyQuat pressCameraRotation;
    QPointer<Ry3DViewport> pressViewport;
};
