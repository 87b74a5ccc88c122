#include "support/RyTest.h"

#include "RyToolScene.h"

#include "pluginsource/RyJointTools/pane/RyJointEditorToolFrame.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/ui/RyFloatPropertyWgt.h"

#include <QLabel>
#include <QLayout>
#include <QSlider>

/// How the settings pane of the tool is laid out.
class RyPaneTest : public QObject
{
    Q_OBJECT

private slots:
    void names();
    void keepsToTheTop();
    void labelsStandLeftOfTheirFields();
    void numbersHaveNoSlider();
};

void RyPaneTest::names()
{
    RyToolScene scene;
    const RyJointEditorToolFrame *pane = scene.tool->frame();
    QCOMPARE(pane->objectName(), QStringLiteral("Joint Editor Tool Settings"));
    const auto *label = pane->findChild<QLabel *>(QStringLiteral("JointEditorNodeLbl"));
    QVERIFY(label);
    QCOMPARE(label->text(), QStringLiteral("Node :"));
}

void RyPaneTest::keepsToTheTop()
{
    RyToolScene scene;
    RyJointEditorToolFrame *pane = scene.tool->frame();
    pane->resize(400, 3000);
    pane->show();
    const auto *orders = pane->findChild<QWidget *>(QStringLiteral("JointEditorRotationOrderCmb"));
    const auto *panel = pane->findChild<QWidget *>(QStringLiteral("JointEditorCenterEndPanel"));
    const int top = panel->mapTo(pane, QPoint()).y();
    QVERIFY(top > orders->geometry().bottom() && top < orders->geometry().bottom() + 20);
    const auto *last = pane->findChild<QWidget *>(QStringLiteral("JointEditorHiddenCbx"));
    QVERIFY(last->mapTo(pane, QPoint()).y() < top + 600);
    // The display options stay at the bottom, as high as they need.
    const auto *display = pane->findChild<QWidget *>(QStringLiteral("JointEditorDisplayPanel"));
    QCOMPARE(display->mapTo(pane, display->rect().bottomLeft()).y(), pane->height() - 1);
    QCOMPARE(display->height(), display->minimumSizeHint().height());
}

void RyPaneTest::labelsStandLeftOfTheirFields()
{
    RyToolScene scene;
    RyJointEditorToolFrame *pane = scene.tool->frame();
    pane->resize(400, 700);
    pane->show();
    const auto place = [&](const char *name) { return pane->findChild<QWidget *>(QLatin1String(name))->geometry(); };
    const QRect node = place("JointEditorNodeLbl");
    const QRect order = place("JointEditorRotationOrderLbl");
    const QRect orders = place("JointEditorRotationOrderCmb");
    QVERIFY(order.top() > node.bottom());
    QVERIFY(orders.left() > order.right());
    QVERIFY(orders.top() > place("JointEditorNodeBtn").bottom());
}

void RyPaneTest::numbersHaveNoSlider()
{
    RyToolScene scene;
    RyFloatProperty *origin = scene.lShin->getOriginXControl();
    origin->setMin(-100.0f);
    origin->setMax(100.0f);
    origin->setIsClamped(true);
    scene.select(scene.lShin);
    const auto *number = scene.tool->frame()->findChild<RyFloatPropertyWgt *>(QStringLiteral("JointEditorOriginXWgt"));
    QCOMPARE(number->getFirstProperty(), origin);
    QVERIFY(number->slider()->isHidden());
}

RY_TEST(RyPaneTest)

#include "tst_pane.moc"
