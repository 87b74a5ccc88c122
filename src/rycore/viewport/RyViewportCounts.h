#pragma once

/// What a viewport has done since it was made; for tests and benchmarks.
struct RyViewportCounts
{
    /// Passes of the pick code.
    int pickPasses = 0;
    /// Pictures of the scene; a repaint of the tool alone makes none.
    int scenePaints = 0;
    int framePaints = 0;
    /// Of positions to the graphics memory.
    int positionUploads = 0;
};
