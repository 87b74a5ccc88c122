#pragma once

#include "demo_session/DemoStage.h"

/// A first look at the program, on the sample figure: points at a part, selects the left forearm, drags the end of its
/// bone, aligns it, undoes and redoes, saves.
class FirstSession
{
public:
    explicit FirstSession(DemoStage &stage) : m_stage(stage) {}
    void play();

private:
    void hoverPart();
    bool dragEndPoint(RyNode *node);
    void alignNode();
    void undoAndRedo(RyNode *node);

    DemoStage &m_stage;
};
