#pragma once

#include "demo_session/DemoStage.h"

/// Plays sessions by itself, each on the sample figure as it comes: a first look, how a chain of bones is made, a clip
/// that an elbow was moved under, and how an unfinished character is put right. Leaves pictures and the saved files in
/// a folder and says on standard output what happened.
class DemoSession
{
public:
    /// `foreign`: an FBX file for a session of its own, beside which a GLB is written; none where it is empty.
    DemoSession(HostWindow &window, const QString &folder, const QString &foreign)
        : m_stage(window, folder), m_foreign(foreign)
    {}
    /// 0 when every step did what it should.
    int run();

private:
    DemoStage m_stage;
    QString m_foreign;
};
