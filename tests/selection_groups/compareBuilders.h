#pragma once

#include <QStringList>

class RyFigure;

struct RyBuilderComparison
{
    QStringList faults; // where results differ, or where not all was taken back
    int changes = 0;    // settings of the eight that changed something
};

/// Builds the figure's map with each of the eight settings, by the builder with one, two and four threads and in plain
/// steps, each time from the state of now, and takes all of it back.
RyBuilderComparison compareBuilders(RyFigure *figure);
