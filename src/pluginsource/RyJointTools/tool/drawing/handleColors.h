#pragma once

#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"

#include <QColor>

struct RyDrawContext;

// The colours of what the tool draws, for the eye and for the pick pass. All go to the current context.

/// The flat colour that the pick pass reads as an id; ids are cut to 8 bits.
void setPickColor(int id);
/// The colour that handles of a role have while the mouse is elsewhere.
QColor restingColor(const RyDrawContext &context, RyHandle::ColorRole role);
/// The colour of a handle: its id in the pick pass, the selected colour while it is under the mouse, else that of its
/// role. The selected colour goes to GL as 0 to 255, so that each of its channels is either off or full.
///
/// To be called within glBegin and glEnd: a driver keeps one program for all that gives its colour there, and needs
/// another where the colour is set aside.
void setHandleColor(const RyDrawContext &context, const RyHandle &handle);
/// Red, green, blue for axis 0, 1, 2.
QColor axisColor(int axis);
