#include "support/RyTest.h"

#include "RyParametricToolScene.h"

#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"
#include "rycore/parametric/RyLegacyBendParam.h"
#include "rycore/parametric/RyLegacySmoothScale.h"
#include "rycore/parametric/RyLegacyTwistParam.h"
#include "rycore/undo/restore/RyRestorePoints.h"
#include "support/checkUndo.h"

namespace {

/// Nothing about the bones but kind, axis, flags and values.
QString valuesOf(const RyLegacyJointParam *param)
{
    const QStringList parts = ryParamText(*param).split(' ');
    return QStringList(parts.mid(8)).join(' ');
}

/// Values and flags as an artist leaves them: the own parameter and its copy agree.
void workOn(const RyParametricToolScene &scene, RyBone *bone)
{
    for (RyLegacyJointParam *param : scene.doll.joint(bone)->jointParamsIterator()) {
        if (param->getDriver() != bone)
            continue;
        float next = 3.0f;
        for (RyFloatProperty *value : param->controllers())
            value->setValue(next += 1.25f);
        param->getDynamicSphere()->getYRotControl()->setValue(12.0f);
        param->setFlags(param->flags() | RyLegacyJointParam::ApplyMatrices | RyLegacyJointParam::ApplyBulges |
                        RyLegacyJointParam::ApplyBlend);
    }
}

} // namespace

/// What deleting a bone of a parametric figure does to its joints.
class RyParametricDeletionTest : public QObject
{
    Q_OBJECT

private slots:
    void jointGoesAndChildrenMove()
    {
        RyParametricToolScene scene;
        ParametricScene &doll = scene.doll;
        workOn(scene, doll.lHand);
        auto *zones = dynamic_cast<RyLegacySmoothScale *>(doll.param(doll.lHand, "lArm_smoox"));
        zones->setHiStart(31.0f);
        zones->setApplyZones(true);
        auto *counterpart = dynamic_cast<RyLegacySmoothScale *>(doll.param(doll.lArm, "lHand_smoox"));
        counterpart->setLoEnd(29.0f);
        const QString counterpartBefore = ryParamText(*counterpart);
        const QStringList chestBefore = legacyParamsOf(doll.joint(doll.chest));
        const QString rightBefore = ryParamText(*doll.joint(doll.rArm));

        deleteBone(doll.lArm);
        QCOMPARE(doll.lHand->getNodeParent(), static_cast<RyNode *>(doll.chest));
        QStringList names;
        for (const RyLegacyJoint *joint : doll.binding->joints())
            names << joint->getName();
        QCOMPARE(names, QStringList({"chest", "lHand", "lTip", "rArm", "rHand", "rTip"}));
        QStringList expected = chestBefore.filter(QRegularExpression("^(?!lArm)"));
        expected << "lHand_twistx X lHand"
                 << "lHand_jointy Y lHand"
                 << "lHand_jointz Z lHand"
                 << "lHand_smoox X lHand";
        QCOMPARE(legacyParamsOf(doll.joint(doll.chest)), expected);
        // The chest's first axis is Y: that of the scale it drives.
        QCOMPARE(legacyParamsOf(doll.joint(doll.lHand)).mid(0, 4),
                 QStringList({"twistx X lHand", "jointy Y lHand", "jointz Z lHand", "chest_smooy Y chest"}));
        QCOMPARE(zones->getName(), QStringLiteral("chest_smooy"));
        QCOMPARE(zones->getHiStart(), 31.0f);
        QVERIFY(zones->applyZones() && zones->hiValid());
        QCOMPARE(ryParamText(*doll.param(doll.chest, "lHand_smoox")), counterpartBefore);
        for (const char *name : {"twistx", "jointy", "jointz"}) {
            const RyLegacyJointParam *own = doll.param(doll.lHand, name);
            const RyLegacyJointParam *copy = doll.joint(doll.chest)->findParam("lHand_" + QString(name));
            QCOMPARE(valuesOf(copy), valuesOf(own));
            QCOMPARE(copy->flags(), own->flags() | RyLegacyJointParam::Flipped);
            QCOMPARE(own->findPartner(), copy);
        }
        QCOMPARE(ryParamText(*doll.joint(doll.rArm)), rightBefore);
    }

    void childOfATopBoneIsDrivenByNoParent()
    {
        RyParametricToolScene scene;
        deleteBone(scene.doll.chest);
        for (const RyBone *bone : {scene.doll.lArm, scene.doll.rArm}) {
            QCOMPARE(bone->getNodeParent(), static_cast<RyNode *>(scene.doll.figure));
            QCOMPARE(legacyParamsOf(scene.doll.joint(bone)).filter("smoo"),
                     legacyParamsOf(scene.doll.joint(bone)).filter("Hand_smoox"));
        }
    }

    void leafGoesWithAllThatItDrives()
    {
        RyParametricToolScene scene;
        deleteBone(scene.doll.lTip);
        QVERIFY(legacyParamsOf(scene.doll.joint(scene.doll.lHand)).filter("lTip").isEmpty());
        QVERIFY(!scene.doll.figure->findBone(QStringLiteral("lTip")));
    }

    void bonesWithoutJoints()
    {
        RyParametricToolScene scene;
        ParametricScene &doll = scene.doll;
        doll.binding->removeJoint(doll.joint(doll.lArm));
        deleteBone(doll.lArm);
        // What the arm had to say of the hand's scale is made anew, on the other side.
        const auto *scale = dynamic_cast<const RyLegacySmoothScale *>(doll.param(doll.chest, "lHand_smoox"));
        QVERIFY(scale && scale->loValid() && !scale->hiValid());
        QCOMPARE(scale->getDriver(), doll.lHand);
        // A child without one gets none.
        doll.binding->removeJoint(doll.joint(doll.rTip));
        deleteBone(doll.rHand);
        QVERIFY(!doll.joint(doll.rTip));
        QVERIFY(legacyParamsOf(doll.joint(doll.rArm)).filter("rTip").isEmpty());
    }

    void boneThatJoinedAnotherSkeleton()
    {
        RyParametricToolScene scene;
        auto *prop = new RyNode;
        prop->setName(QStringLiteral("ring"));
        auto *mesh = new RyFacetMesh;
        mesh->setPositions({{50, 110, 0}, {52, 110, 0}, {52, 112, 0}});
        auto *object = new RyObject;
        object->addShape(new RyFacetShape(mesh));
        prop->setObject(object);
        scene.doll.lHand->addNodeChild(prop);
        ryScene()->addNode(prop);
        const RyLegacyFigure *ring = RyLegacyFigure::convertPropToFigure(prop, QStringLiteral("ring"), true);
        const RyLegacyBinding *binding = RyLegacyBinding::findBinding(ring);
        QCOMPARE(int(binding->joints().size()), 1);
        deleteBone(scene.doll.figure->findBone(QStringLiteral("ring")));
        QVERIFY(binding->joints().empty());
    }

    void isUndoableWithinAHold()
    {
        RyParametricToolScene scene;
        workOn(scene, scene.doll.lHand);
        const QString before = RyParametricToolScene::wholeDump();
        checkUndoInHold([&] { deleteBone(scene.doll.lArm); });
        ryUndoStack()->undo();
        QCOMPARE(RyParametricToolScene::wholeDump(), before);
    }

    void restorePointBringsAllBack()
    {
        RyParametricToolScene scene;
        workOn(scene, scene.doll.rHand);
        ryRestorePoints()->setMost(3);
        ryScene()->setSelection({scene.doll.rArm});
        const QString before = RyParametricToolScene::wholeDump();
        RyJEDeleteBoneAction action;
        action.trigger();
        QCOMPARE(ryUndoStack()->count(), 0);
        QCOMPARE(ryScene()->getPrimarySelection(), static_cast<RyNode *>(scene.doll.chest));
        const QString after = RyParametricToolScene::wholeDump();
        QVERIFY(after != before);
        QVERIFY(ryRestorePoints()->restore(0));
        QCOMPARE(RyParametricToolScene::wholeDump(), before);
        QVERIFY(ryRestorePoints()->restore(0));
        QCOMPARE(RyParametricToolScene::wholeDump(), after);
        ryRestorePoints()->setMost(0);
    }
};

RY_TEST(RyParametricDeletionTest)
#include "tst_parametricDeletion.moc"
