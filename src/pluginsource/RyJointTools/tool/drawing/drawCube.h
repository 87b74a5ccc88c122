#pragma once

class RyMatrix4;
class RyVec3;
class RyViewVolume;

/// Half the edge of a cube at a place: what keeps it as large on screen, up to a limit.
float cubeSizeAt(const RyViewVolume &volume, const RyVec3 &place);
/// The six sides of a cube about the zero point, mapped to the world; within glBegin and glEnd of quads.
void putCube(const RyMatrix4 &toWorld, float halfSize);
