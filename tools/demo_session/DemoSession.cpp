#include "demo_session/DemoSession.h"

#include "demo_session/ChainStory.h"
#include "demo_session/ClipStory.h"
#include "demo_session/FirstSession.h"
#include "demo_session/FixStory.h"
#include "demo_session/ForeignStory.h"
#include "ryhost/commands/HostFiles.h"
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
    if (m_stage.check(window.files()->openSample(), QStringLiteral("the sample figure opens")))
        FirstSession(m_stage).play();
    if (m_stage.check(window.files()->openSample(), QStringLiteral("the sample figure opens again")))
        ChainStory(m_stage).play();
    if (m_stage.check(window.files()->openSample(), QStringLiteral("the sample figure opens a third time")))
        ClipStory(m_stage).play();
    if (m_stage.check(window.files()->openSample(), QStringLiteral("the sample figure opens once more")))
        FixStory(m_stage).play();
    if (!m_foreign.isEmpty() &&
        m_stage.check(window.files()->openSample(), QStringLiteral("the sample figure opens another time")))
        ForeignStory(m_stage, m_foreign).play();
    std::printf("%s\n",
                m_stage.failures() == 0 ? "The session went as it should." : "The session did not go as it should.");
    return m_stage.failures() == 0 ? 0 : 1;
}
