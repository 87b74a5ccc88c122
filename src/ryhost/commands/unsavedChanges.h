#pragma once

#include <QString>

class RyUndoStack;
struct SavedState;

/// Whether anything differs from that state; of an imported scene, which no file holds, whether there are steps.
bool hasEdits(const RyUndoStack &stack, const SavedState &saved);
/// How many steps were made since, or taken back: "3 edits". Empty when nothing differs.
QString unsavedCountText(const RyUndoStack &stack, const SavedState &saved);
/// "3 edits since the save of 14:05: Bend, Move (2 times)." Empty when nothing differs.
QString unsavedChangesText(const RyUndoStack &stack, const SavedState &saved);
