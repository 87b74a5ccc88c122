#pragma once

#include "demo_session/DemoStage.h"

/// How an artist brings an FBX file, mends an elbow and saves a GLB; says how long the program took for it.
class ForeignStory
{
public:
    /// `file`: a character with a bone called RightForeArm.
    ForeignStory(DemoStage &stage, const QString &file) : m_stage(stage), m_file(file) {}
    void play();

private:
    bool openFile();
    bool moveElbow();
    bool saveAndReopen();

    DemoStage &m_stage;
    QString m_file;
    float m_place = 0.0f; // of the elbow
};
