#pragma once

/// How the tool edits; nothing of it is kept from run to run.
struct RyToolOptions
{
    bool autoSnapEndPoints = false;
    bool autoAlign = false;
    bool pushNeighborAngles = true;
    bool propagationEnabled = false;
    bool propagateTranslation = false;
    bool propagateOrientation = false;
    bool boneCreation = false; // a click with Ctrl makes a bone
};
