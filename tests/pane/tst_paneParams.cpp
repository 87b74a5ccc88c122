#include "RyPaneParams.h"

#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"

using namespace RyPaneParams;

/// Choosing in the pane what of a node is edited.
class RyPaneParamsTest : public QObject
{
    Q_OBJECT

private slots:
    void lists()
    {
        RyPaneScene scene;
        scene.select(scene.doll.lHand);
        QCOMPARE(items(scene), QStringList({"Center/EndPoint", "twistx [XRot]", "jointy [YRot]", "jointz [ZRot]",
                                            "lArm_smoox [Parent]", "lTip_smoox [Child]"}));
        // The copies that stand on the joint of the parent, and those of the children here, are not listed.
        QVERIFY(scene.doll.param(scene.doll.lArm, "lHand_jointy"));
        QVERIFY(scene.doll.param(scene.doll.lHand, "lTip_jointy"));
        scene.doll.lHand->getYRotControl()->setLabel("Side-Side");
        QCOMPARE(items(scene)[2], QStringLiteral("jointy [Side-Side]"));
        scene.select(scene.lShin);
        QCOMPARE(items(scene), QStringList({"Center/EndPoint"}));
        QCOMPARE(look(scene), QStringLiteral("points Center/EndPoint"));
        scene.manager->setActiveTool(nullptr);
        QCOMPARE(items(scene), QStringList({"Center/EndPoint"}));
        QVERIFY(!scene.find<QComboBox>("JointEditorRotationOrderCmb")->isEnabled());
        QVERIFY(scene.find<QWidget>("JointEditorNodeBtn")->isEnabled());
    }

    void otherAxesAndDrivers()
    {
        RyPaneScene scene;
        RyLegacyJoint *joint = scene.doll.joint(scene.doll.lHand);
        joint->addJointParam(new RyLegacyCurve("plane", 4, scene.doll.lHand));
        joint->addJointParam(new RyLegacyCurve("edge", 1, scene.doll.lHand));
        joint->addJointParam(new RyLegacyTwistParam("stranger", 0, scene.doll.rArm));
        joint->addJointParam(new RyLegacySmoothScale("lost", 0, nullptr));
        scene.doll.joint(scene.doll.rHand)->addJointParam(new RyLegacyTwistParam("elsewhere", 0, scene.doll.lHand));
        scene.select(scene.doll.lHand);
        QCOMPARE(items(scene).mid(6), QStringList({"plane", "edge [YRot]", "lost [Child]"}));
        scene.choose(scene.doll.lHand, "jointy");
        pick(scene, "plane");
        QCOMPARE(scene.tool->currentParam(), joint->findParam("plane"));
        QCOMPARE(look(scene), QStringLiteral("none plane"));
        pick(scene, "edge");
        QCOMPARE(look(scene), QStringLiteral("none edge [YRot]"));
        pick(scene, "lost");
        QCOMPARE(look(scene), QStringLiteral("parameter lost [Child]"));
    }

    void choosing()
    {
        RyPaneScene scene;
        scene.select(scene.doll.lHand);
        QSignalSpy changes(scene.tool, &RyJointEditorTool::paramChanged);
        pick(scene, "jointz");
        QCOMPARE(scene.tool->currentParam(), scene.doll.param(scene.doll.lHand, "jointz"));
        QCOMPARE(look(scene), QStringLiteral("parameter jointz [ZRot]"));
        QCOMPARE(changes.count(), 3); // the list was walked
        pick(scene, "Center/EndPoint");
        QVERIFY(!scene.tool->currentParam());
        QCOMPARE(look(scene), QStringLiteral("points Center/EndPoint"));
        // Nothing is current: the pane shows the points again all the same.
        const int before = changes.count();
        emptyPane(scene);
        QVERIFY(QMetaObject::invokeMethod(scene.pane, "setParam", Q_ARG(int, 0)));
        QCOMPARE(look(scene), QStringLiteral("points Center/EndPoint"));
        QCOMPARE(changes.count(), before);
        scene.tool->setParam(scene.doll.param(scene.doll.lHand, "twistx"));
        QCOMPARE(look(scene), QStringLiteral("parameter twistx [XRot]"));
        QCOMPARE(ryUndoStack()->count(), 0);
    }

    void unlistedParameters()
    {
        RyPaneScene scene;
        scene.select(scene.doll.lHand);
        const auto show = [&](RyLegacyJointParam *param) {
            return QMetaObject::invokeMethod(scene.pane, "updateParam", Q_ARG(RyLegacyJointParam *, param));
        };
        QVERIFY(show(scene.doll.param(scene.doll.rArm, "jointz")));
        QCOMPARE(look(scene), QStringLiteral("parameter twistx [XRot]"));
        scene.select(scene.lShin);
        QVERIFY(show(scene.doll.param(scene.doll.rArm, "jointz")));
        QCOMPARE(look(scene), QStringLiteral("parameter Center/EndPoint"));
    }

    void anUnlistedParameterWhileTheListChanges()
    {
        RyPaneScene scene;
        scene.select(scene.doll.lHand);
        scene.tool->setParam(scene.doll.param(scene.doll.lHand, "lTip_jointy"));
        QCOMPARE(look(scene), QStringLiteral("parameter twistx [XRot]"));
        scene.doll.param(scene.doll.lHand, "jointz")->setName("fold");
        QVERIFY(items(scene).contains("fold [ZRot]"));
        QCOMPARE(look(scene), QStringLiteral("parameter twistx [XRot]"));
    }

    void aBindingThatGoes()
    {
        RyPaneScene scene;
        scene.select(scene.doll.lHand);
        const QStringList before = items(scene);
        {
            RyUndoStackHold hold;
            scene.doll.figure->getObject()->removeModifier(scene.doll.binding);
            hold.accept("Remove");
        }
        QCOMPARE(items(scene), QStringList({"Center/EndPoint"}));
        ryUndoStack()->undo();
        QCOMPARE(items(scene), before);
        ryUndoStack()->redo();
        QCOMPARE(items(scene), QStringList({"Center/EndPoint"}));
        QCOMPARE(look(scene), QStringLiteral("points Center/EndPoint"));
    }

    /// One that comes unannounced is listed at the end of the drag.
    void noListIsMadeWhileAParameterIsDragged()
    {
        RyPaneScene scene;
        QVERIFY(scene.choose(scene.doll.lHand, "jointz"));
        const int before = combo(scene).count();
        RyLegacyJoint *joint = scene.doll.joint(scene.doll.lHand);
        joint->blockSignals(true);
        joint->addJointParam(new RyLegacyTwistParam("silent", 0, scene.doll.lHand));
        joint->blockSignals(false);
        QSignalSpy drawn(ryScene(), &RyScene::drawnDataChanged);
        scene.press(HandleId::DynamicTranslateX, {400, 300});
        scene.move({440, 260});
        scene.move({450, 230});
        QVERIFY(drawn.count() > 1);
        QCOMPARE(combo(scene).count(), before);
        scene.release();
        QCOMPARE(combo(scene).count(), before + 1);
    }

    void followsTheBone()
    {
        RyPaneScene scene;
        scene.choose(scene.doll.lHand, "jointz");
        scene.select(scene.doll.rHand);
        QCOMPARE(scene.tool->currentParam(), scene.doll.param(scene.doll.rHand, "jointz"));
        QCOMPARE(look(scene), QStringLiteral("parameter jointz [ZRot]"));
        scene.select(scene.hip);
        QCOMPARE(look(scene), QStringLiteral("points Center/EndPoint"));
        scene.choose(scene.doll.lHand, "lTip_smoox");
        scene.select(scene.doll.rHand);
        QCOMPARE(look(scene), QStringLiteral("parameter rTip_smoox [Child]"));
    }

    void followsWhatBecomesOfTheJoint()
    {
        RyPaneScene scene;
        RyLegacyJointParam *bend = scene.choose(scene.doll.lHand, "jointz");
        const QStringList before = items(scene);
        RyLegacyJoint *joint = scene.doll.joint(scene.doll.lHand);
        {
            RyUndoStackHold hold;
            joint->removeJointParam(joint->findParam("jointy"));
            hold.accept("Remove");
        }
        QVERIFY(!items(scene).contains("jointy [YRot]"));
        QCOMPARE(look(scene), QStringLiteral("parameter jointz [ZRot]"));
        ryUndoStack()->undo();
        QCOMPARE(items(scene), before);
        QCOMPARE(look(scene), QStringLiteral("parameter jointz [ZRot]"));
        ryUndoStack()->redo();
        joint->addJointParam(new RyLegacyTwistParam("roll", 0, scene.doll.lHand));
        QCOMPARE(items(scene).back(), QStringLiteral("roll [XRot]"));
        bend->setName("fold");
        QCOMPARE(look(scene), QStringLiteral("parameter fold [ZRot]"));
        joint->findParam("roll")->setDriver(scene.doll.rArm);
        QVERIFY(!items(scene).contains("roll [XRot]"));
        // The one that is shown goes.
        joint->removeJointParam(bend);
        QVERIFY(!scene.tool->currentParam());
        QCOMPARE(look(scene), QStringLiteral("points Center/EndPoint"));
        QVERIFY(!items(scene).contains("fold [ZRot]"));
    }

    void followsTheJointAndTheParent()
    {
        RyPaneScene scene;
        scene.select(scene.doll.lHand);
        const QStringList before = items(scene);
        {
            RyUndoStackHold hold;
            scene.doll.binding->removeJoint(scene.doll.joint(scene.doll.lHand));
            hold.accept("Remove");
        }
        QCOMPARE(items(scene), QStringList({"Center/EndPoint"}));
        ryUndoStack()->undo();
        QCOMPARE(items(scene), before);
        {
            RyUndoStackHold hold;
            scene.doll.rArm->addNodeChild(scene.doll.lHand, true);
            hold.accept("Move");
        }
        QVERIFY(items(scene).contains("lArm_smoox [Child]"));
        ryUndoStack()->undo();
        QCOMPARE(items(scene), before);
    }

private:
    static void pick(RyPaneScene &scene, const char *begin)
    {
        RyPaneScene::pickItem(combo(scene), QString::fromLatin1(begin));
    }
    static void emptyPane(RyPaneScene &scene)
    {
        RyLegacyCurve curve;
        QVERIFY(QMetaObject::invokeMethod(scene.pane, "updateParam", Q_ARG(RyLegacyJointParam *, &curve)));
        QVERIFY(look(scene).startsWith(QStringLiteral("none")));
    }
};

RY_TEST(RyPaneParamsTest)

#include "tst_paneParams.moc"
