#include "support/RyTest.h"

#include "RyToolScene.h"

#include "pluginsource/RyJointTools/dialogs/RyJESelectedNodesAttributesEditDlg.h"
#include "pluginsource/RyJointTools/operations/snapPoints.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QRadioButton>
#include <QSignalSpy>

/// Edits that come after others: current values are no longer the defaults, and caches must have followed.
class RyEditedNodesTest : public QObject
{
    Q_OBJECT

private slots:
    void secondEditPropagatesItsOwnWay();
    void secondEditAfterAnEditWithoutPropagation();
    void editAfterUndoPropagatesItsOwnWay();
    void adjustModeAddsToCurrentValues();
    void setModeLeavesDefaults();
    void snappingIsOneEditOfTheNode();
};

void RyEditedNodesTest::secondEditPropagatesItsOwnWay()
{
    RyToolScene scene;
    scene.pose();
    scene.select(scene.lThigh);
    scene.tool->setPropagateTranslation(true);
    RyVec3 foot = scene.lFoot->getOrigin();
    RyVec3 end = scene.lThigh->getEndPoint();
    RyVec3 origin = scene.lThigh->getOrigin();
    for (const RyVec3 &way : {RyVec3(1, 2, 3), RyVec3(0, -4, 0), RyVec3(0.5f, 0, -7)}) {
        origin += way;
        foot += way;
        end += way;
        scene.lThigh->setOrigin(origin);
        QCOMPARE(scene.tool->cachedOrigin(), scene.lThigh->getOrigin());
        QVERIFY((scene.lFoot->getOrigin() - foot).length() < 1e-4f);
        QVERIFY((scene.lThigh->getEndPoint() - end).length() < 1e-4f);
    }
    QCOMPARE(scene.lFoot->getOrigin(true), RyVec3(10, 8, -1));
}

void RyEditedNodesTest::secondEditAfterAnEditWithoutPropagation()
{
    RyToolScene scene;
    scene.select(scene.lThigh);
    scene.lThigh->setOrigin({20, 90, 5});
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(10, 8, -1));
    scene.tool->setPropagateTranslation(true);
    scene.lThigh->setOrigin({21, 90, 5});
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(11, 8, -1));
    QCOMPARE(scene.lThigh->getEndPoint(), RyVec3(12, 50, 2));
}

void RyEditedNodesTest::editAfterUndoPropagatesItsOwnWay()
{
    RyToolScene scene;
    scene.select(scene.lThigh);
    scene.tool->setPropagateTranslation(true);
    {
        RyUndoStackHold hold;
        scene.lThigh->setOrigin({15, 80, 1});
        hold.accept(QStringLiteral("Move"));
    }
    ryUndoStack()->undo();
    scene.lThigh->setOrigin({11, 95, 0});
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(11, 8, -1));
    QCOMPARE(scene.lShin->getEndPoint(), RyVec3(11, 8, -1));
}

void RyEditedNodesTest::adjustModeAddsToCurrentValues()
{
    RyToolScene scene;
    scene.lShin->setOrigin({13, 52, -4});
    scene.lFoot->setEndPoint({1, 2, 3});
    scene.lFoot->getOrientZControl()->setValue(40.0f);
    ryScene()->setSelection({scene.lFoot, scene.lShin});
    RyJESelectedNodesAttributesEditDlg dialog;
    dialog.findChild<QRadioButton *>("NodeAttributesAdjustValueBtn")->click();
    const QList<QDoubleSpinBox *> fields = dialog.findChildren<QDoubleSpinBox *>();
    const QList<QCheckBox *> checks = dialog.findChildren<QCheckBox *>();
    QCOMPARE(fields.size(), 9);
    QCOMPARE(checks.size(), 9);
    for (int i = 0; i < 9; ++i) {
        checks[i]->click();
        fields[i]->setValue(i + 1.5);
    }
    dialog.accept();
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(14.5f, 54.5f, -0.5f));
    QCOMPARE(scene.lShin->getOrigin(true), RyVec3(11, 50, 2));
    QCOMPARE(scene.lFoot->getEndPoint(), RyVec3(5.5f, 7.5f, 9.5f));
    QCOMPARE(scene.lFoot->getEndPoint(true), RyVec3(11, 2, 13));
    QCOMPARE(scene.lFoot->getOrientZControl()->getValue(), 49.5f);
    QCOMPARE(scene.lFoot->getOrientZControl()->getDefaultValue(), 0.0f);
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(11.5f, 10.5f, 2.5f));
}

void RyEditedNodesTest::setModeLeavesDefaults()
{
    RyToolScene scene;
    scene.lShin->setOrigin({13, 52, -4});
    ryScene()->setSelection({scene.lShin});
    RyJESelectedNodesAttributesEditDlg dialog;
    dialog.findChildren<QCheckBox *>().first()->click();
    dialog.findChildren<QDoubleSpinBox *>().first()->setValue(7.25);
    dialog.accept();
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(7.25f, 52, -4));
    QCOMPARE(scene.lShin->getOrigin(true), RyVec3(11, 50, 2));
}

void RyEditedNodesTest::snappingIsOneEditOfTheNode()
{
    // Whoever hears of a value while it is snapped finds the node in an edit, and hears once that it is over.
    for (const bool center : {true, false}) {
        RyToolScene scene;
        RyBone *bone = center ? scene.lThigh : scene.hip;
        bone->setOrigin({3, 4, 5});
        bone->setEndPoint({1, 2, 3});
        int least = 100;
        QObject listener;
        for (RyFloatProperty *control : {bone->getOriginXControl(), bone->getOriginYControl(), bone->getEndXControl(),
                                         bone->getEndYControl(), bone->getEndZControl()})
            connect(control, &RyFloatProperty::currentValueChanged, &listener,
                    [&] { least = std::min(least, bone->editLevel()); });
        const QSignalSpy rigging(bone, &RyNode::riggingChanged);
        QVERIFY(center ? snapCenterPoint(bone) : snapEndPoint(bone));
        QCOMPARE(rigging.count(), 1);
        QCOMPARE(least, 2); // that of the setter within that of the operation
        QCOMPARE(bone->editLevel(), 0);
        // Also where nothing is left to move.
        QVERIFY(center ? snapCenterPoint(bone) : snapEndPoint(bone));
        QCOMPARE(rigging.count(), 2);
    }
}

RY_TEST(RyEditedNodesTest)

#include "tst_editedNodes.moc"
