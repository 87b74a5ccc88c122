#include "rycore/undo/RyUndoStackSilence.h"

int RyUndoStackSilence::s_depth = 0;
