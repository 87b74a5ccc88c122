#pragma once

class RyViewMatrices;

/// Draws the three axes of the world, with their letters, into the upper right corner of the view that is bound. Loads
/// the matrices anew.
void ryDrawAxisCross(const RyViewMatrices &matrices, float pixelRatio);
