#include "RyPaneScene.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "rycore/ui/RyScrubLabel.h"

#include <QTabWidget>

/// Parameters that change or go while the pages show them.
class RyParamPagesFollowTest : public QObject
{
    Q_OBJECT

    static constexpr char angleA[] = "JointParamGeneralStaticAWgt";

private slots:
    void aParameterThatGoesUnderTheCursor()
    {
        RyPaneScene scene;
        RyLegacyJointParam *bend = scene.choose(scene.doll.lHand, "jointz");
        RyNumberField *number = scene.field(angleA)->numberField();
        number->setFocus();
        number->selectAll();
        QTest::keyClicks(number, "33");
        const float value = bend->controllers()[0]->getValue();
        const QString before = RyPaneScene::wholeDump();
        {
            RyUndoStackHold hold;
            scene.doll.joint(scene.doll.lHand)->removeJointParam(bend);
            hold.accept("Remove");
        }
        QVERIFY(!scene.field(angleA)->getFirstProperty());
        QVERIFY(!number->hasFocus());
        scene.pane->setFocus();
        QCOMPARE(ryUndoStack()->count(), 1);
        ryUndoStack()->undo();
        QCOMPARE(RyPaneScene::wholeDump(), before);
        QCOMPARE(bend->controllers()[0]->getValue(), value);
        ryUndoStack()->clearAll();
        scene.doll.joint(scene.doll.lHand)->removeJointParam(bend);
        QTest::keyClick(number, Qt::Key_Up);
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void aParameterThatGoesDuringADrag()
    {
        RyPaneScene scene;
        RyLegacyJointParam *bend = scene.choose(scene.doll.lHand, "jointz");
        const QPointer<RyLegacyJointParam> guard(bend);
        const float before = bend->controllers()[0]->getValue();
        emit scene.field(angleA)->label()->scrubStarted();
        emit scene.field(angleA)->label()->scrubbed(30);
        QVERIFY(ryUndoStack()->isHoldOpen());
        scene.tool->setParam(nullptr);
        QVERIFY(!ryUndoStack()->isHoldOpen());
        emit scene.field(angleA)->label()->scrubFinished(false);
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(bend->controllers()[0]->getValue(), before + 15.0f);
        ryUndoStack()->undo();
        QCOMPARE(bend->controllers()[0]->getValue(), before);
        QVERIFY(guard);
    }

    /// The drag is a step before the one that the partner goes in, and takes nothing of that back.
    void aPartnerThatGoesDuringADrag()
    {
        RyPaneScene scene;
        RyLegacyJointParam *bend = scene.choose(scene.doll.lHand, "jointz");
        const RyRef<RyLegacyJointParam> partner(bend->findPartner());
        const QString untouched = RyPaneScene::wholeDump();
        const float before = bend->controllers()[0]->getValue();
        emit scene.field(angleA)->label()->scrubStarted();
        emit scene.field(angleA)->label()->scrubbed(30);
        {
            RyUndoStackHold hold;
            scene.doll.joint(scene.doll.lArm)->removeJointParam(partner.get());
            hold.accept("Remove");
        }
        QVERIFY(!partner->getJoint());
        QVERIFY(!bend->findPartner());
        QVERIFY(!ryUndoStack()->isHoldOpen());
        QCOMPARE(bend->controllers()[0]->getValue(), before + 15.0f);
        QCOMPARE(ryUndoStack()->count(), 2);
        QCOMPARE(ryUndoStack()->caption(0), QStringLiteral("Change Static A"));
        QCOMPARE(ryUndoStack()->caption(1), QStringLiteral("Remove"));
        ryUndoStack()->undo();
        QCOMPARE(bend->findPartner(), partner.get());
        QCOMPARE(bend->controllers()[0]->getValue(), before + 15.0f);
        ryUndoStack()->undo();
        QCOMPARE(RyPaneScene::wholeDump(), untouched);
    }

    void typedWhileAnotherBoneComes()
    {
        RyPaneScene scene;
        const RyLegacyJointParam *bend = scene.choose(scene.doll.lHand, "jointz");
        const RyLegacyJointParam *other = scene.doll.param(scene.doll.rHand, "jointz");
        const float others = other->controllers()[0]->getValue();
        RyNumberField *number = scene.field(angleA)->numberField();
        number->setFocus();
        number->selectAll();
        QTest::keyClicks(number, "12");
        scene.select(scene.doll.rHand);
        QCOMPARE(scene.field(angleA)->getFirstProperty(), other->controllers()[0]);
        QCOMPARE(bend->controllers()[0]->getValue(), 12.0f);
        QCOMPARE(other->controllers()[0]->getValue(), others);
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Change Static A"));
    }

    /// What is typed goes to the parameter that was shown, also when another bone is chosen by the mouse meanwhile.
    void typedBeforeAnotherBone()
    {
        RyPaneScene scene;
        const RyLegacyJointParam *bend = scene.choose(scene.doll.lHand, "jointz");
        RyNumberField *number = scene.field(angleA)->numberField();
        number->setFocus();
        number->selectAll();
        QTest::keyClicks(number, "12");
        scene.find<QComboBox>("JointEditorParameterCmb")->setFocus();
        scene.select(scene.doll.rHand);
        QCOMPARE(bend->controllers()[0]->getValue(), 12.0f);
        QCOMPARE(scene.field(angleA)->getFirstProperty(),
                 scene.doll.param(scene.doll.rHand, "jointz")->controllers()[0]);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Change Static A"));
    }

    void aPartnerThatGoes()
    {
        RyPaneScene scene;
        RyLegacyJointParam *bend = scene.choose(scene.doll.lHand, "jointz");
        RyLegacyJointParam *partner = bend->findPartner();
        const RyRef<RyLegacyJointParam> kept(partner);
        const float before = partner->controllers()[4]->getValue();
        bend->setFlags(bend->flags() | RyLegacyJointParam::ApplyBulges);
        {
            RyUndoStackHold hold;
            scene.doll.joint(scene.doll.lArm)->removeJointParam(partner);
            hold.accept("Remove");
        }
        scene.type("JointParamGeneralPosLeftBulgeWgt", "0.5");
        QCOMPARE(bend->controllers()[4]->getValue(), 0.5f);
        QCOMPARE(partner->controllers()[4]->getValue(), before);
        ryUndoStack()->undo();
        ryUndoStack()->undo();
        scene.type("JointParamGeneralPosLeftBulgeWgt", "0.25");
        QCOMPARE(bend->controllers()[4]->getValue(), 0.25f);
        QCOMPARE(partner->controllers()[4]->getValue(), 0.25f);
    }

    /// A bone above the driver is deleted: the partner goes, and comes back with the driver's new place in the tree.
    void aPartnerThatComesBackWithinAStep()
    {
        RyPaneScene scene;
        scene.doll.lArm->removeNodeChild(scene.doll.lHand);
        scene.doll.rArm->addNodeChild(scene.doll.lHand);
        scene.doll.rArm->getNodeParent()->removeNodeChild(scene.doll.rArm);
        scene.doll.figure->addNodeChild(scene.doll.rArm);
        scene.select(scene.doll.lArm);
        scene.tool->setParam(scene.doll.param(scene.doll.lArm, "lHand_smoox"));
        const RyLegacyJointParam *scale = scene.tool->currentParam();
        const RyLegacyJointParam *partner = scene.tool->editedPartnerParam();
        QVERIFY(scale && partner);
        QCOMPARE(partner->getJoint()->getBone(), scene.doll.lHand);
        static constexpr char end[] =
            "JointParamGeneralSmoothHiStartWgt"; // the partner tells a zone from its other end
        partner->controllers()[3]->setValue(scale->controllers()[0]->getValue() + 5.0f);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(scene.shown(end), QString());
        {
            RyUndoStackHold hold;
            deleteBone(scene.doll.rArm);
            hold.accept("Delete");
        }
        QCoreApplication::sendPostedEvents();
        QCOMPARE(scene.tool->currentParam(), scale);
        QCOMPARE(scene.tool->editedPartnerParam(), partner);
        QCOMPARE(scene.shown(end), QString());
    }

    void switchesByOtherHands()
    {
        RyPaneScene scene;
        auto *bend = qobject_cast<RyLegacyBendParam *>(scene.choose(scene.doll.lHand, "jointz"));
        auto *other = qobject_cast<RyLegacyBendParam *>(scene.doll.param(scene.doll.lHand, "jointy"));
        const auto *box = scene.find<QGroupBox>("JointParamGeneralEnableBulgesGrpBox");
        QVERIFY(!box->isChecked());
        bend->setApplyBulges(true);
        QVERIFY(box->isChecked());
        QVERIFY(scene.field("JointParamGeneralPosLeftBulgeWgt")->isEnabled());
        QVERIFY(scene.choose(scene.doll.lHand, "jointy"));
        QVERIFY(!box->isChecked());
        // The one that was shown has no say any more.
        bend->setApplyBulges(false);
        other->setApplyBulges(true);
        QVERIFY(box->isChecked());
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void theTabStays()
    {
        RyPaneScene scene;
        auto *tabs = scene.find<QTabWidget>("JointEditorParamTabWgt");
        QVERIFY(scene.choose(scene.doll.lHand, "jointz"));
        tabs->setCurrentIndex(1);
        scene.select(scene.doll.rHand);
        QCOMPARE(tabs->currentIndex(), 1);
        scene.tool->setParam(nullptr);
        QVERIFY(scene.choose(scene.doll.lHand, "twistx"));
        QCOMPARE(tabs->currentIndex(), 1);
    }
};

RY_TEST(RyParamPagesFollowTest)

#include "tst_paramPagesFollow.moc"
