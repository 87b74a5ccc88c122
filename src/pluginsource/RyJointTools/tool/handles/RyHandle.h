#pragma once

#include <Qt>

/// What is known of a handle beside its place: one row of the handle table.
struct RyHandle
{
    /// How it is drawn and dragged.
    enum Kind { Point, AxisArrow, Ring, ScaleCube, GeneralCube, AngleRay, Zone };
    /// What a drag of it changes.
    enum Target { Origin, EndPoint, DynamicSphere, StaticSphere, BendAngle, TwistZone, HighZone, LowZone };
    /// Which value of the target, where it has several: the angle, the end of a zone, the side of a sphere.
    enum Value { NoValue, AngleA, AngleB, AngleC, AngleD, Start, End, Plus, Minus };
    /// The colour of the settings that it has while the mouse is elsewhere.
    enum ColorRole { StaticColor, DynamicColor };

    int id;
    Kind kind;
    Target target;
    int axis; // 0 X, 1 Y, 2 Z, -1 where none
    Value value;
    ColorRole color;
    const char *name;    // for the status line, source text of the context RyHandleTable
    const char *toolTip; // source text of the context RyHandleTable
};
