#pragma once

#include "rycore/parametric/fit/RyLegacyFitReport.h"

#include <QStringList>

#include <functional>
#include <vector>

class RyScene;

/// The weights that parametric figures get in files, since other programs know no joints. A fit is kept with its figure
/// and made anew only when what it was made from is another.
namespace RyFigureFits {

/// Called with the figure's name and what is done of its fit, from 0 to 1; false cancels, and the figure gets the plain
/// averages of how far each vertex follows each bone.
using Progress = std::function<bool(const QString &figure, double done)>;

struct Fit
{
    QString figure;
    bool isPlain = false;
    RyLegacyFitReport report; // of a fit that was not cancelled
};

/// Fits all parametric figures of the scene that have a mesh, and says how well.
std::vector<Fit> make(const RyScene &scene, const Progress &progress, QStringList *messages);

} // namespace RyFigureFits
