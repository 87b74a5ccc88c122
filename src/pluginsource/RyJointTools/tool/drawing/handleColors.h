#pragma once

#include <QColor>

struct RyDrawContext;

// The colours of what the tool draws, for the eye and for the pick pass. All go to the current context.

/// The flat colour that the pick pass reads as an id; ids are cut to 8 bits.
void setPickColor(int id);
/// The colour of a handle: its id in the pick pass, the selected colour while it is under the mouse, else `color`. The
/// selected colour goes to GL as 0 to 255, so that each of its channels is either off or full.
void setHandleColor(const RyDrawContext &context, int id, const QColor &color);
/// Red, green, blue for axis 0, 1, 2.
QColor axisColor(int axis);
