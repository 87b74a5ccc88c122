#pragma once

class RyCamera;
class RyLine3;
class RyVec3;

// How a handle is seen, asked where it stands; within about 1.5 degrees. False without a camera.

/// Whether the line points at the eye: no way along it can be told from the mouse.
bool isAlongView(const RyLine3 &line, const RyCamera *camera);
/// Whether the plane is seen from its edge: no place in it can be told from the mouse.
bool isEdgeOn(const RyVec3 &place, const RyVec3 &normal, const RyCamera *camera);
