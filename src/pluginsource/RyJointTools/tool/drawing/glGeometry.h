#pragma once

class RyVec3;
struct RyDrawContext;

// Geometry and line width on the current context and its modelview matrix.

void putVertex(const RyVec3 &point);
/// Thick lines would swallow their neighbours in the pick pass.
void capLineWidth();
/// Distance of a place in the world from the camera that looks.
float distanceFromCamera(const RyDrawContext &context, const RyVec3 &place);
