#pragma once

#include <QtGlobal>

class RyMatrix4;
class RyVec3;
struct RyDrawContext;

// Geometry and line width on the current context and its modelview matrix.

void putVertex(const RyVec3 &point);
/// The 60 points of a ring about an axis, all of it then mapped to the world.
void putRing(const RyMatrix4 &toWorld, const RyVec3 &center, int axis, float radius);
/// Thick lines would swallow their neighbours in the pick pass.
void capLineWidth();
/// Of the scene that the viewport shows, 0 where nobody counts.
quint64 sceneRevision(const RyDrawContext &context);
/// Distance of a place in the world from the camera that looks.
float distanceFromCamera(const RyDrawContext &context, const RyVec3 &place);
