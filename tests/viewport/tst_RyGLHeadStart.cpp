#include "support/RyTest.h"

#include "rycore/viewport/Ry3DViewport.h"
#include "rycore/viewport/RyGLHeadStart.h"
#include "rycore/viewport/RyViewportCounts.h"

#include <QGuiApplication>

class RyGLHeadStartTest : public QObject
{
    Q_OBJECT
private slots:
    void aViewportWaitsForIt()
    {
        QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
        RyGLHeadStart::finish(); // nothing began
        RyGLHeadStart::begin();
        QVERIFY(RyGLHeadStart::isLoading());
        Ry3DViewport viewport(nullptr);
        QVERIFY(!RyGLHeadStart::isLoading());
        QVERIFY(viewport.isValid());
        viewport.resize(80, 60);
        viewport.show();
        QVERIFY(QTest::qWaitForWindowExposed(&viewport));
        QTRY_VERIFY(viewport.counts().framePaints > 0);
        QVERIFY(viewport.grabPicture(80, 60).pixelColor(40, 2).lightness() > 0);
        // What is loaded stays.
        RyGLHeadStart::begin();
        QVERIFY(!RyGLHeadStart::isLoading());
    }
};

RY_TEST(RyGLHeadStartTest)
#include "tst_RyGLHeadStart.moc"
