#pragma once

#include <QString>

/// How far a linear blend of the weights of a fit is from what the joints do, over all poses that it was measured in.
/// Distances are in per cent of the figure's height.
struct RyLegacyFitReport
{
    int poses = 0;
    double rms = 0;       // over all vertices
    double rmsPartly = 0; // over those that a driver moves partly
    double max = 0;
    double bulges = 0; // what bulges add, as a root of mean squares over all vertices: no weights can say it
    QString bone;      // owner of the vertex that is farthest
    QString pose;      // in which it is
};
