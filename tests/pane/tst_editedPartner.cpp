#include "RyPaneScene.h"

#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"

#include <QTabWidget>

namespace {

using Param = RyLegacyJointParam;

/// Enters one value of each kind by the pages, the tool's slots and the switches.
void editEverything(RyPaneScene &scene)
{
    scene.type("JointParamGeneralStaticAWgt", "103");
    RyPaneScene::click(*scene.find<QGroupBox>("JointParamGeneralEnableBulgesGrpBox"));
    scene.type("JointParamGeneralPosLeftBulgeWgt", "0.7");
    RyPaneScene::click(*scene.find<QGroupBox>("JointParamGeneralEnableAnglesGrpBox"));
    scene.find<QTabWidget>("JointEditorParamTabWgt")->setCurrentIndex(1);
    RyPaneScene::click(*scene.find<QGroupBox>("JointParamMatricesEnableSphereMatricesGrpBox"));
    scene.type("JointParamMatricesMatrixPositionYWgt", "3.5");
    scene.type("JointParamMatricesMatrixRotationYWgt", "15");
    scene.tool->setRestrictRotationAxes(true);
    scene.type("JointParamMatricesMatrixRotationXWgt", "20");
    scene.tool->setDynamicB(0.25f, 1);
}

/// Leads an angle past its neighbours and back, within one step.
void slideOutAndBack(const Param &param)
{
    RyFloatProperty *angle = param.controllers()[1];
    const float start = angle->getValue();
    RyUndoStackHold hold;
    for (const float degrees : {150.0f, -170.0f, start})
        angle->adjustValue(degrees);
    hold.accept(QStringLiteral("Slide"));
}

void dragSphere(RyPaneScene &scene)
{
    scene.press(HandleId::DynamicTranslateX, {400, 300});
    scene.move({440, 260});
}

QString values(const Param &param)
{
    const QString text = ryParamText(param);
    return text.mid(text.indexOf(QLatin1Char(':')));
}

} // namespace

/// Everything that is edited goes to one and the same partner, and comes back on both sides.
class RyEditedPartnerTest : public QObject
{
    Q_OBJECT

    /// The two sides are equal at first; `others` keep what they have.
    static void check(RyPaneScene &scene, Param &current, Param &partner, const std::vector<const Param *> &others)
    {
        QCOMPARE(scene.tool->currentParam(), &current);
        QCOMPARE(scene.tool->editedPartnerParam(), &partner);
        partner.copyValuesFrom(current);
        ryUndoStack()->clearAll();
        const auto textOfOthers = [&] {
            QString text;
            for (const Param *other : others)
                text += ryParamText(*other);
            return text;
        };
        const QString kept = textOfOthers();
        const QString before = RyPaneScene::wholeDump();
        slideOutAndBack(current);
        QCOMPARE(RyPaneScene::wholeDump(), before);

        editEverything(scene);
        dragSphere(scene);
        QCOMPARE(partner.editLevel(), 1);
        scene.release();
        QCOMPARE(values(partner), values(current));
        QCOMPARE(partner.flags(), current.flags());
        QVERIFY(static_cast<RyLegacyBendParam &>(current).applyBulges());
        QCOMPARE(textOfOthers(), kept);
        for (const Param *side : {&current, &partner}) {
            QVERIFY(side->controllers()[0]->getValue() > 100.0f);
            QCOMPARE(side->controllers()[4]->getValue(), 0.7f);
            QCOMPARE(side->getDynamicSphere()->getXRotControl()->getValue(), 20.0f);
            QCOMPARE(side->getDynamicSphere()->getYRotControl()->getValue(), 0.0f);
        }
        while (ryUndoStack()->canUndo())
            ryUndoStack()->undo();
        QCOMPARE(RyPaneScene::wholeDump(), before);

        // A partner that goes ends the drag as a step of its own, and is written no more.
        const RyRef<Param> held(&partner);
        dragSphere(scene);
        QVERIFY(scene.tool->isDragging());
        const QString dragged = RyPaneScene::wholeDump();
        RyUndoStackHold hold;
        scene.doll.binding->beginEdit();
        partner.getJoint()->removeJointParam(&partner);
        QVERIFY(!scene.tool->isDragging());
        scene.doll.binding->finishEdit();
        hold.accept(QStringLiteral("Remove"));
        ryUndoStack()->undo();
        QCOMPARE(RyPaneScene::wholeDump(), dragged);
        ryUndoStack()->undo();
        QCOMPARE(RyPaneScene::wholeDump(), before);
        ryUndoStack()->redo();
        ryUndoStack()->redo();
        QVERIFY(!scene.tool->editedPartnerParam());
        const QString gone = values(partner);
        scene.type("JointParamMatricesMatrixPositionYWgt", "4.5");
        scene.tool->setDynamicB(0.5f, 1);
        QCOMPARE(values(partner), gone);
    }

private slots:
    void decoyBeforeTheCopy()
    {
        RyPaneScene scene;
        RyLegacyJoint *above = scene.doll.joint(scene.doll.lArm);
        const RyRef<Param> copy(scene.doll.param(scene.doll.lArm, "lHand_jointy"));
        above->removeJointParam(copy.get());
        auto *decoy = new RyLegacyTwistParam("decoy", 1, scene.doll.lHand);
        above->addJointParam(decoy);
        above->addJointParam(copy.get());
        Param *bend = scene.choose(scene.doll.lHand, "jointy");
        QVERIFY(bend);
        QCOMPARE(scene.tool->partnerParam(), static_cast<Param *>(decoy));
        check(scene, *bend, *copy, {decoy});
    }

    /// It goes with the child's own parameter, not with what the node drives above.
    void copyThatAChildDrives()
    {
        RyPaneScene scene;
        scene.select(scene.doll.lHand);
        Param *copy = scene.doll.param(scene.doll.lHand, "lTip_jointy");
        scene.tool->setParam(copy);
        const Param *above = scene.doll.param(scene.doll.lArm, "lHand_jointy");
        QCOMPARE(static_cast<const Param *>(scene.tool->partnerParam()), above);
        check(scene, *copy, *scene.doll.param(scene.doll.lTip, "jointy"),
              {above, scene.doll.param(scene.doll.lHand, "jointy")});
    }
};

RY_TEST(RyEditedPartnerTest)

#include "tst_editedPartner.moc"
