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
    QCOMPARE(pane->getDividerBar()->objectName(), QStringLiteral("JointEditorDividerBarWgt"));
    QVERIFY(pane->getDividerBar()->isHidden());
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
    const auto *numbers = pane->findChild<QWidget *>(QStringLiteral("JointEditorNumbersWgt"));
    const int top = numbers->mapTo(pane, QPoint()).y();
    QVERIFY(top > orders->geometry().bottom() && top < orders->geometry().bottom() + 20);
    const auto *last = pane->findChild<QWidget *>(QStringLiteral("JointEditorOrientationZWgt"));
    QVERIFY(last->mapTo(pane, QPoint()).y() < top + 500);
    QCOMPARE(pane->findChild<QWidget *>(QStringLiteral("JointEditorTopWgt"))->geometry(), pane->rect());
}

void RyPaneTest::labelsStandLeftOfTheirFields()
{
    RyToolScene scene;
    RyJointEditorToolFrame *pane = scene.tool->frame();
    pane->resize(400, 700);
    pane->layout()->activate();
    const auto *header = pane->findChild<QWidget *>(QStringLiteral("JointEditorTopWgt"));
    header->layout()->activate();
    const auto place = [&](const char *name) { return pane->findChild<QWidget *>(QLatin1String(name))->geometry(); };
    const QRect node = place("JointEditorNodeLbl");
    const QRect order = place("JointEditorRotationOrderLbl");
    const QRect orders = place("JointEditorRotationOrderCmb");
    QVERIFY(order.top() > node.bottom());
    QVERIFY(orders.left() > order.right());
    QVERIFY(orders.top() > place("JointEditorNodeNameLbl").bottom());
}

void RyPaneTest::numbersHaveNoSlider()
{
    RyToolScene scene;
    RyFloatProperty *origin = scene.lShin->getOriginXControl();
    origin->setMin(-100.0f);
    origin->setMax(100.0f);
    origin->setIsClamped(true);
    scene.select(scene.lShin);
    const auto *number =
        scene.tool->frame()->findChild<RyFloatPropertyWgt *>(QStringLiteral("JointEditorCenterPointXWgt"));
    QCOMPARE(number->getFirstProperty(), origin);
    QVERIFY(number->slider()->isHidden());
}

RY_TEST(RyPaneTest)

#include "tst_pane.moc"
