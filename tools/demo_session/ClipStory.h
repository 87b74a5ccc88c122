#pragma once

#include "demo_session/DemoStage.h"
#include "rycore/math/RyVec3.h"

#include <vector>

class RyFigure;

/// How an artist watches a clip, mends an elbow under it, saves, and finds that the clip shows what it showed.
class ClipStory
{
public:
    explicit ClipStory(DemoStage &stage) : m_stage(stage) {}
    void play();

private:
    bool findFigure();
    bool watchClip(const QString &pictureName);
    bool moveElbow();
    bool saveAndReopen();
    void compareFrames();

    DemoStage &m_stage;
    RyFigure *m_figure = nullptr;
    std::vector<RyVec3> m_before; // the vertices of the frame
};
