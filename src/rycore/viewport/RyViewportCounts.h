#pragma once

/// What a viewport has done since it was made; for tests and benchmarks.
struct RyViewportCounts
{
    /// Passes of the pick code.
    int pickPasses = 0;
    /// Pictures of the scene; a repaint of the tool alone makes none.
    int scenePaints = 0;
    /// Pictures of the scene drawn once more with more samples.
    int refinements = 0;
    int framePaints = 0;
    /// Of positions to the graphics memory.
    int positionUploads = 0;
};
