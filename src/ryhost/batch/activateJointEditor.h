#pragma once

class RyMainWindow;

/// The joint editor, as in a window where a person would use its actions; nothing without one.
void activateJointEditor(RyMainWindow &window);
