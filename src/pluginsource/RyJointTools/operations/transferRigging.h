#pragma once

#include <QStringList>

class RyFigure;
class RySkeleton;

/// What came of a transfer, by names.
struct RyRiggingTransfer
{
    int matched = 0;
    QStringList unmatched; // bones of the target without a namesake in the source, in the target's order
    int sourceOnly = 0;    // bones of the source without a namesake in the target
};

/// Places the bones of a figure where the bones of the same names of another one are, posed, in figure space: it makes
/// no difference where the source stands and how it is turned and scaled, and what its pose scales is in the points
/// alone. Bulges come along, in the scale of the target, where both skins bind the bones. Bones without a namesake
/// stay, and so do the bones of figures that hang on either of the two. Resulting current values, in one rig edit; all
/// of the source is read before anything is written, so that it may hang on the target.
RyRiggingTransfer transferRigging(const RySkeleton &source, const RyFigure &target);
