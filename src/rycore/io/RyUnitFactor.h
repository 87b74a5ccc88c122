#pragma once

/// Centimetres per unit of a file, when the file's convention says `nominal` (glTF: 100) and the largest figure is
/// `height` units high. When the figure would then be lower than 54 or higher than 540 centimetres, the power of ten is
/// taken that brings it nearest to 170. Without a height: `nominal`.
double ryUnitFactor(double nominal, double height);

/// The height of a figure with these extents along x, y and z, in their unit: that along y, or the largest of them for
/// a figure that lies flat.
double ryFigureHeight(double x, double y, double z);
