#include "rycore/figure/RyShapeRiggingAdjuster.h"

#include "rycore/figure/RyFigure.h"

RyError RyShapeRiggingAdjuster::adjustRiggingToShape(RyFigure *figure)
{
    // Shapes have no positions beside their base ones, so there is never a difference that the bones could follow.
    m_lastError =
        figure ? tr("The figure has no shape that differs from its base.") : tr("There is no figure to adjust.");
    return RyError(RyError::UnusableObject);
}
