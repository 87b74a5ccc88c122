#pragma once

class RyBone;

/// Whether the first axis of a bone, the one that it is drawn along and twists about, lies between its center and its
/// end.
bool isAxisAlong(const RyBone &bone);
