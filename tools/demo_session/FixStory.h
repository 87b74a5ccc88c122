#pragma once

#include "demo_session/DemoStage.h"

#include "rycore/math/RyVec3.h"

class RyBone;
class RyFigure;

/// How an artist puts an unfinished character right: looks where it bends, moves an elbow, mirrors one arm to the other
/// side, aligns all bones, makes a T-pose the rest, saves, and finds everything again in the saved file.
class FixStory
{
public:
    explicit FixStory(DemoStage &stage) : m_stage(stage) {}
    void play();

private:
    /// False, and a failure, without the figure or one of its arms.
    bool findArms();
    bool makeUnfinished();
    void look();
    void lookAtTheElbow();
    /// Bends the left elbow and stretches it again.
    void bendElbow(const QString &pictureName);
    bool moveElbow();
    bool mirror();
    bool align();
    bool raiseArms();
    bool bake();
    void saveAndReopen();

    /// Of the bones of the right arm, the farthest from where those of the left one are reflected, in centimetres.
    float asymmetry() const;

    DemoStage &m_stage;
    RyFigure *m_figure = nullptr;
    RyBone *m_shoulder = nullptr;
    RyBone *m_elbow = nullptr;
    /// Where the finished figure has its left elbow, in its T-pose, and where with lowered arms.
    RyVec3 m_finished;
    RyVec3 m_lowered;
    size_t m_clips = 0;
};
