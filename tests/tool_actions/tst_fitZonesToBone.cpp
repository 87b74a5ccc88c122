#include "support/RyTest.h"

#include "RyMessageBoxes.h"
#include "RyParametricToolScene.h"

#include "rycore/app/RyFitZonesToBoneAction.h"

/// The command that fits zones to bones.
class RyFitZonesToBoneActionTest : public QObject
{
    Q_OBJECT

private slots:
    void enabling()
    {
        RyParametricToolScene scene;
        scene.doll.binding->removeJoint(scene.doll.joint(scene.doll.rTip));
        RyFitZonesToBoneAction action;
        action.init();
        QString enabled;
        for (RyNode *node : {static_cast<RyNode *>(nullptr), scene.prop, static_cast<RyNode *>(scene.lFoot),
                             static_cast<RyNode *>(scene.doll.figure), static_cast<RyNode *>(scene.doll.rTip),
                             static_cast<RyNode *>(scene.doll.lTip)}) {
            ryScene()->setSelection({node});
            enabled += QString::number(action.isEnabled());
            QCOMPARE(action.unavailableReason(),
                     action.isEnabled() ? QString() : QStringLiteral("Select a bone of a parametric figure first."));
        }
        QCOMPARE(enabled, QStringLiteral("000001"));
    }

    void isOneStepForAllSelectedBones()
    {
        RyParametricToolScene scene;
        ParametricScene &doll = scene.doll;
        ryScene()->setSelection({doll.lHand, scene.lFoot, doll.rTip});
        const QString before = RyParametricToolScene::wholeDump();
        const QString chest = ryParamText(*doll.joint(doll.chest));
        RyFitZonesToBoneAction action;
        QCOMPARE(action.text(), QStringLiteral("Fit Zones to Bone"));
        action.trigger();
        for (const RyBone *bone : {doll.lHand, doll.rTip})
            QVERIFY(doll.param(bone, "jointy")->controllers()[0]->getValue() !=
                    doll.param(bone, "jointy")->controllers()[0]->getDefaultValue());
        QCOMPARE(ryParamText(*doll.joint(doll.chest)), chest);
        QCOMPARE(ryUndoStack()->count(), 1);
        QCOMPARE(ryUndoStack()->undoText(), QStringLiteral("Fit Zones to Bone"));
        const QString after = RyParametricToolScene::wholeDump();
        ryUndoStack()->undo();
        QCOMPARE(RyParametricToolScene::wholeDump(), before);
        ryUndoStack()->redo();
        QCOMPARE(RyParametricToolScene::wholeDump(), after);
    }

    void saysWhatIsMissing()
    {
        RyParametricToolScene scene;
        ryScene()->setSelection({scene.lFoot});
        const QString before = RyParametricToolScene::wholeDump();
        RyMessageBoxes boxes;
        RyFitZonesToBoneAction().executeAction();
        QCOMPARE(boxes.said,
                 QStringList("Selection Error|A bone of a parametric figure must be selected to continue.|Ok|warning"));
        QCOMPARE(RyParametricToolScene::wholeDump(), before);
        QCOMPARE(ryUndoStack()->count(), 0);
    }
};

RY_TEST(RyFitZonesToBoneActionTest)
#include "tst_fitZonesToBone.moc"
