#pragma once

#include "rycore/undo/restore/RyUndoKeeper.h"

class RyScene;

/// Keeps for restore points what a scene holds and no undo step records: selection, time, the file that it came
/// from, and which figures follow another one or draw their bones.
class RyRestoreKeeper : public RyUndoKeeper
{
public:
    explicit RyRestoreKeeper(RyScene *scene) : m_scene(scene) {}
    std::function<void()> keep() override;

private:
    RyScene *m_scene;
};
