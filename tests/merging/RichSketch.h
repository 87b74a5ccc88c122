#pragma once

#include "FigureSketch.h"

/// A small figure with all that a file may bring along: materials with pictures, variants, lights, a camera, props, a
/// second scene, a clip that also drives materials and lights by pointers, and extensions that nobody knows. `suffix`
/// ends the names of the nodes; `scale` is that of the root, which is turned as well.
FigureSketch richSketch(const std::string &suffix, double scale);
