#pragma once

#include "rycore/figure/RySymmetricEditing.h"

#include "rycore/scene/RyRiggingEdit.h"

/// A rig edit of a command that says by itself which bones it places, and where: symmetric editing carries nothing of
/// it to the other side and holds nothing in the plane, neither while it lives nor at its end.
class RyExactRiggingEdit
{
    // Outlives the rig edit, at whose end bones are announced.
    const RySymmetricEditing::Suspension m_suspension;
    const RyRiggingEdit m_edit;
};
