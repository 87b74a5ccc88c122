#pragma once

#include "ClipStage.h"

#include <QString>

#include <set>

/// What two files are compared by when their clips play.
struct ClipChoice
{
    size_t frames = 24;        ///< of each clip, at most
    size_t vertices = 1500;    ///< of the file, about
    std::set<int> goneNodes;   ///< vertices that one of these pulled may move; a clip that drove only these may be gone
    std::set<int> steadyNodes; ///< these stay in the world as well
    std::set<int> otherClips;  ///< are left aside
    bool isPart = false;       ///< clips of another file may follow in the second one
};

/// The largest difference found, and where.
struct ClipDifference
{
    double distance = 0.0; ///< in units of the height of what the first file shows
    int clip = -1;         ///< of the first file
    double time = 0.0;
    ClipStage::Point point;
    QString reason; ///< why the two cannot be compared; the distance is infinite then

    QString text() const;
};

/// How far any vertex of any frame of a clip stands from where it stood. Clips are matched by their order, vertices by
/// node, primitive and place. A clip that has channels which cannot be played, where the one before has none, is
/// infinitely far off.
ClipDifference largestClipDifference(const GltfEvaluator &before, const GltfEvaluator &after,
                                     const ClipChoice &choice = {});

int clipCount(const GltfEvaluator &file);
/// Of what the file shows in its own pose, in file units; where it lies flat, its largest extent.
double shownHeight(const GltfEvaluator &file);
