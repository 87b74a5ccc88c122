#pragma once

#include "demo_session/DemoStage.h"

class RyBone;
class RyFigure;
class RyVec3;

/// How an artist gives the sample figure an antenna: builds a chain of bones by Ctrl+click, names and aligns them,
/// splits one, deletes one by mistake, takes that back, saves, and finds everything again in the saved file.
class ChainStory
{
public:
    explicit ChainStory(DemoStage &stage) : m_stage(stage) {}
    void play();

private:
    bool lookAtTheHead();
    bool turnInteractiveModeOn();
    /// Ctrl+clicks at a point of the world; the new bone, selected, or null.
    RyBone *addBone(const QString &name, const QString &parentName, const RyVec3 &end);
    bool renameFirstBone();
    void alignBones();
    void splitLastBone();
    void deleteAndRestore();
    void saveAndReopen();

    /// Every vertex still has all of its weight.
    void checkWeights();
    /// The scene as a text, with nothing selected.
    QString dump();

    DemoStage &m_stage;
    RyFigure *m_figure = nullptr;
};
