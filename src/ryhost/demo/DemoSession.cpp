#include "ryhost/demo/DemoSession.h"

#include "rycore/app/RyApp.h"
#include "ryhost/demo/ChainStory.h"
#include "ryhost/demo/FirstSession.h"
#include "ryhost/window/HostFiles.h"
#include "ryhost/window/HostWindow.h"

#include <QGuiApplication>
#include <QScreen>

#include <cstdio>

int DemoSession::run()
{
    HostWindow &window = m_stage.window();
    window.move(0, 0);
    window.resize(QGuiApplication::primaryScreen()->availableGeometry().size().boundedTo(QSize(1440, 900)));
    PointerDriver::wait(1200);
    std::printf("pointer: %s\n",
                m_stage.pointer().usesDisplayServer() ? "the display server's" : "events at the window");
    FirstSession(m_stage).play();
    const QString sample = RyApp::getHomePath() + QStringLiteral("/samples/mannequin.glb");
    if (m_stage.check(window.files()->openPath(sample, false), QStringLiteral("the sample figure opens again")))
        ChainStory(m_stage).play();
    std::printf("%s\n",
                m_stage.failures() == 0 ? "The session went as it should." : "The session did not go as it should.");
    return m_stage.failures() == 0 ? 0 : 1;
}
