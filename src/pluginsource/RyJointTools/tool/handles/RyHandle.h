#pragma once

#include <Qt>

/// What is known of a handle beside its place: one row of the handle table.
struct RyHandle
{
    /// How it is drawn and dragged.
    enum Kind { Point, AxisArrow, Ring, ScaleCube, GeneralCube, AngleRay, Zone };
    /// What a drag of it changes.
    enum Target { Origin, EndPoint, DynamicSphere, StaticSphere, BendAngle, TwistZone, HighZone, LowZone };

    int id;
    Kind kind;
    Target target;
    int axis;            // 0 X, 1 Y, 2 Z, -1 where none
    const char *name;    // for the status line, source text of the context RyHandleTable
    const char *toolTip; // source text of the context RyHandleTable
};
