#pragma once

class RyLegacyFigure;

/// Makes a parametric figure of the first figure of the application's scene: a prop first, then a parametric figure
/// with as many bones, where they were, a joint for each, and the same face groups. Null, after failing the running
/// test, where that does not work. Leaves no undo steps.
RyLegacyFigure *ryMakeParametric();
