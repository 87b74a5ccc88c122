#include "support/RyTest.h"

#include "RyFilledBoneDialog.h"
#include "RyParametricToolScene.h"

#include "pluginsource/RyJointTools/operations/createBoneAtClick.h"
#include "pluginsource/RyJointTools/operations/createChildBone.h"
#include "pluginsource/RyJointTools/operations/createLegacyJoint.h"
#include "rycore/math/RyLine3.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/skin/RySkinBinding.h"
#include "support/RyNear.h"
#include "support/checkUndo.h"

/// New bones of parametric figures.
class RyParametricCreationTest : public QObject
{
    Q_OBJECT

private slots:
    void childGetsAJoint()
    {
        RyParametricToolScene scene;
        const int before = int(scene.doll.binding->joints().size());
        checkUndoInHold([&] {
            createChildBone(scene.doll.lTip, QStringLiteral("claw"), QStringLiteral("Claw"), RyRotationOrder(5));
        });
        const RyBone *claw = scene.doll.figure->findBone(QStringLiteral("claw"));
        QCOMPARE(int(scene.doll.binding->joints().size()), before + 1);
        QCOMPARE(legacyParamsOf(RyLegacyJoint::findJoint(claw)),
                 QStringList({"twistz Z claw", "jointx X claw", "jointy Y claw", "lTip_smoox X lTip"}));
        QCOMPARE(legacyParamsOf(scene.doll.joint(scene.doll.lTip)).mid(4),
                 QStringList({"claw_twistz Z claw", "claw_jointx X claw", "claw_jointy Y claw", "claw_smooz Z claw"}));
        QCOMPARE(claw->getXRotControl()->getLabel(), QStringLiteral("XRot"));
    }

    void dialogAlignsTheBoneAfterwards()
    {
        RyParametricToolScene scene;
        scene.select(scene.doll.lTip);
        RyFilledBoneDialog dialog(scene.tool);
        dialog.fill(QStringLiteral("claw"), QStringLiteral("Claw"));
        dialog.order->setCurrentIndex(dialog.order->findData(int(RyRotationOrder::YXZ)));
        QVERIFY(dialog.accepts());
        RyNode *claw = ryScene()->getPrimarySelection();
        QCOMPARE(claw->getName(), QStringLiteral("claw"));
        QVERIFY(ryIsNear(claw->getOrientation().multVec({0, 1, 0}),
                         (claw->getEndPoint() - claw->getOrigin()).normalized(), 1e-4f));
        QCOMPARE(legacyParamsOf(RyLegacyJoint::findJoint(claw)).first(), QStringLiteral("twisty Y claw"));
        QCOMPARE(ryUndoStack()->count(), 0);
        QVERIFY(!ryUndoStack()->isLocked());
    }

    void clickGetsAJoint()
    {
        RyParametricToolScene scene;
        RyBone *bone = nullptr;
        const RyLine3 ray({30, 20, 100}, {30, 20, 0});
        checkUndoInHold([&] { bone = createBoneAtClick(scene.doll.rTip, ray, RyQuat()); });
        bone = scene.doll.figure->findBone(QStringLiteral("rTip2"));
        QVERIFY(bone);
        QCOMPARE(legacyParamsOf(RyLegacyJoint::findJoint(bone)).last(), QStringLiteral("rTip_smoox X rTip"));
        // It takes over the rotation order, and the click lies on the left side.
        const auto *bend = dynamic_cast<const RyLegacyBendParam *>(scene.doll.param(bone, "jointy"));
        QVERIFY(bend && bone->getEndPoint().x > 0.0f);
        QCOMPARE(bend->getStaticAngleAController()->getValue(), 90.0f);
    }

    void weightMappedFiguresGetNone()
    {
        RyParametricToolScene scene;
        auto *object = new RyObject;
        object->addModifier(new RySkinBinding);
        scene.figure->setObject(object);
        const size_t joints = scene.doll.binding->joints().size();
        RyBone *bone = createChildBone(scene.lFoot, QStringLiteral("toe"), QStringLiteral("Toe"), RyRotationOrder());
        QVERIFY(RySkinBinding::findSkinFromNode(bone)->findBoneBinding(bone));
        QVERIFY(!createLegacyJoint(bone, scene.lFoot, true, false));
        QVERIFY(!createLegacyJoint(nullptr, scene.lFoot, true, false));
        // Nor one of no figure at all.
        auto *skeleton = new RySkeleton;
        ryScene()->addNode(skeleton);
        QVERIFY(!RyLegacyJoint::findJoint(
            createChildBone(skeleton, QStringLiteral("a"), QStringLiteral("A"), RyRotationOrder())));
        QCOMPARE(scene.doll.binding->joints().size(), joints);
    }
};

RY_TEST(RyParametricCreationTest)
#include "tst_parametricCreation.moc"
