#pragma once

#include "rycore/math/RyVec3.h"

#include <QColor>

class RyQuat;
struct RyDrawContext;

// Small GL helpers of the tool's drawing. All work on the current context and its modelview matrix.

/// The flat colour that the pick pass reads as an id; ids are cut to 8 bits.
void setPickColor(int id);
/// The colour of a handle: its id in the pick pass, the selected colour while it is under the mouse, else `color`. The
/// selected colour goes to GL as 0 to 255, so that each of its channels is either off or full.
void setHandleColor(const RyDrawContext &context, int id, const QColor &color);
/// Red, green, blue for axis 0, 1, 2.
QColor axisColor(int axis);
void setColor(const QColor &color, float alpha);
void putVertex(const RyVec3 &point);
/// So that what follows is drawn turned by `rotation.multVec`.
void rotateBy(const RyQuat &rotation);
/// Thick lines would swallow their neighbours in the pick pass.
void capLineWidth();
/// Distance of a place in the world from the camera that looks.
float distanceFromCamera(const RyDrawContext &context, const RyVec3 &place);
