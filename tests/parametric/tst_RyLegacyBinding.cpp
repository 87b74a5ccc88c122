#include "parametric/ParamArm.h"

#include "rycore/base/RyERCLink.h"
#include "support/RyTest.h"

#include <QSignalSpy>

/// Joints of a binding and parameters of a joint: order, who owns them, undo, what is announced.
class RyLegacyBindingTest : public QObject
{
    Q_OBJECT

private slots:
    void findsBindingsAndJoints()
    {
        const ParamArm f;
        QCOMPARE(RyLegacyBinding::findBinding(f.skeleton.get()), f.binding);
        QCOMPARE(RyLegacyBinding::findBinding(f.skeleton->getObject()), f.binding);
        QVERIFY(!RyLegacyBinding::findBinding(static_cast<RySkeleton *>(nullptr)));
        QVERIFY(!RyLegacyBinding::findBinding(static_cast<RyObject *>(nullptr)));
        const RyRef<RySkeleton> bare(new RySkeleton);
        QVERIFY(!RyLegacyBinding::findBinding(bare.get()));
        bare->setObject(new RyObject);
        QVERIFY(!RyLegacyBinding::findBinding(bare.get()));
        for (const RyBone *bone : {f.arm, f.elbow, f.hand}) {
            QCOMPARE(RyLegacyJoint::findJoint(bone)->getBone(), bone);
            QCOMPARE(RyLegacyJoint::findJoint(bone), f.jointOf(bone));
            QCOMPARE(f.jointOf(bone)->getBinding(), f.binding);
        }
        QVERIFY(!RyLegacyJoint::findJoint(nullptr));
        QVERIFY(!RyLegacyJoint::findJoint(f.skeleton.get()));
        const RyRef<RyBone> alone(new RyBone);
        QVERIFY(!RyLegacyJoint::findJoint(alone.get()));
        // A joint without a bone is no answer to null.
        f.binding->addJoint(new RyLegacyJoint);
        QVERIFY(!f.binding->findJoint(nullptr));
    }

    void jointsAreFoundByTheBoneTheyHave()
    {
        const ParamArm f;
        RyLegacyJoint *middle = f.jointOf(f.elbow);
        RyLegacyJoint *last = f.jointOf(f.hand);
        {
            RyUndoStackHold hold;
            middle->setBone(f.hand, true);
            hold.accept("Bone");
        }
        QCOMPARE(middle->getName(), QString("elbow")); // it has a name
        QVERIFY(!f.binding->findJoint(f.elbow));
        QCOMPARE(f.binding->findJoint(f.hand), middle); // the first of two
        ryUndoStack()->undo();
        QCOMPARE(f.binding->findJoint(f.elbow), middle);
        QCOMPARE(f.binding->findJoint(f.hand), last);
        ryUndoStack()->redo();
        QCOMPARE(f.binding->findJoint(f.hand), middle);
        f.binding->removeJoint(middle);
        QCOMPARE(f.binding->findJoint(f.hand), last);
        ryUndoStack()->undo(); // of a joint that is gone
        QCOMPARE(f.binding->findJoint(f.hand), last);
    }

    void jointsKeepTheirOrder()
    {
        const ParamArm f;
        const std::vector<RyLegacyJoint *> joints = f.binding->joints();
        QCOMPARE(joints.size(), size_t(3));
        QVERIFY(!f.binding->addJoint(nullptr));
        QVERIFY(!f.binding->addJoint(joints[0]));
        QVERIFY(!f.binding->removeJoint(nullptr));
        const QString before = ryBindingText(*f.binding);
        const QPointer<RyLegacyJoint> middle(joints[1]);
        {
            RyUndoStackHold hold;
            QVERIFY(f.binding->removeJoint(middle));
            hold.accept("Remove");
        }
        QCOMPARE(f.binding->joints(), (std::vector<RyLegacyJoint *>{joints[0], joints[2]}));
        QVERIFY(middle && !middle->getBinding());
        QVERIFY(!f.binding->findJoint(f.elbow));
        const QString after = ryBindingText(*f.binding);
        ryUndoStack()->undo();
        QCOMPARE(f.binding->joints(), joints);
        QCOMPARE(f.binding->findJoint(f.elbow), middle.data());
        QCOMPARE(ryBindingText(*f.binding), before);
        ryUndoStack()->redo();
        QCOMPARE(ryBindingText(*f.binding), after);
        ryUndoStack()->clearAll();
        QVERIFY(!middle); // nobody holds it any more
    }

    void paramsKeepTheirOrder()
    {
        const ParamArm f;
        RyLegacyJoint *joint = f.jointOf(f.elbow);
        const std::vector<RyLegacyJointParam *> params = joint->jointParamsIterator();
        QCOMPARE(params.size(), size_t(8));
        QStringList names;
        for (const RyLegacyJointParam *param : params) {
            names << param->getName();
            QCOMPARE(param->getJoint(), joint);
        }
        QCOMPARE(names.join(' '),
                 QString("twistx jointy jointz arm_smoox hand_twistx hand_jointy hand_jointz hand_smoox"));
        QVERIFY(!joint->addJointParam(nullptr));
        QVERIFY(!joint->addJointParam(params[0]));
        QVERIFY(!f.jointOf(f.arm)->addJointParam(params[0])); // it is on another one
        QVERIFY(!f.jointOf(f.arm)->removeJointParam(params[0]));
        QVERIFY(!joint->removeJointParam(nullptr));
        const QString before = ryBindingText(*f.binding);
        const QPointer<RyLegacyJointParam> second(params[1]);
        {
            RyUndoStackHold hold;
            joint->removeJointParam(second);
            joint->addJointParam(new RyLegacyCurve("curve", 4, f.elbow));
            hold.accept("Exchange");
        }
        QCOMPARE(params.size(), size_t(8)); // a walk is not disturbed
        QVERIFY(second && !second->getJoint());
        QVERIFY(!joint->findParam("jointy"));
        QCOMPARE(joint->params().back()->getName(), QString("curve"));
        const QString after = ryBindingText(*f.binding);
        ryUndoStack()->undo();
        QCOMPARE(ryBindingText(*f.binding), before);
        QCOMPARE(joint->params()[1], second.data());
        ryUndoStack()->redo();
        QCOMPARE(ryBindingText(*f.binding), after);
        ryUndoStack()->clearAll();
        QVERIFY(!second);
    }

    void paramsAreFoundByKindDriverAndAxis()
    {
        const ParamArm f;
        const RyLegacyJoint *joint = f.jointOf(f.elbow);
        QCOMPARE(joint->findParam(RyLegacyJointParam::Bend, f.elbow, 2), joint->findParam("jointz"));
        QCOMPARE(joint->findParam(RyLegacyJointParam::Bend, f.hand, 1), joint->findParam("hand_jointy"));
        QCOMPARE(joint->findParam(RyLegacyJointParam::Twist, f.hand, -1), joint->findParam("hand_twistx"));
        QVERIFY(!joint->findParam(RyLegacyJointParam::Bend, f.elbow, 0));
        QVERIFY(!joint->findParam(RyLegacyJointParam::Bend, f.arm, 1));
        QVERIFY(!joint->findParam(RyLegacyJointParam::Twist, nullptr, -1));
        QVERIFY(!joint->findParam("twistz"));
    }

    void goneBindingTakesItsJointsAlong()
    {
        QPointer<RyLegacyJoint> joint;
        QPointer<RyLegacyJointParam> param;
        {
            const ParamArm f;
            joint = f.jointOf(f.elbow);
            param = joint->params()[2];
            f.skeleton->getObject()->removeModifier(f.binding);
            QVERIFY(!joint && !param);
        }
        const RyRef<RyLegacyJoint> held(new RyLegacyJoint);
        {
            const ParamArm f;
            f.binding->addJoint(held.get());
            QCOMPARE(held->getBinding(), f.binding);
        }
        QVERIFY(!held->getBinding());
    }

    void removalIsToldBeforeItHappens()
    {
        const ParamArm f;
        RyLegacyJoint *joint = f.jointOf(f.elbow);
        const RyRef<RyLegacyJointParam> param(joint->params()[1]);
        const RyRef<RyLegacyJointParam> other(joint->params()[2]);
        std::vector<bool> hadJoint;
        connect(param.get(), &RyLegacyJointParam::aboutToBeRemoved, param.get(),
                [&] { hadJoint.push_back(param->getJoint() == joint && joint->getBinding()); });
        QSignalSpy othersRemoval(other.get(), &RyLegacyJointParam::aboutToBeRemoved);
        joint->removeJointParam(param.get());
        QCOMPARE(hadJoint, std::vector<bool>{true});
        QVERIFY(othersRemoval.isEmpty());
        joint->addJointParam(param.get());
        // The joint takes its parameters along.
        const RyRef<RyLegacyJoint> guard(joint);
        f.binding->removeJoint(joint);
        QCOMPARE(hadJoint, (std::vector<bool>{true, true}));
        QCOMPARE(othersRemoval.size(), 1);
    }

    void undoneAdditionIsARemoval()
    {
        const ParamArm f;
        const RyRef<RyLegacyJointParam> param(new RyLegacyBendParam("more", 1, f.elbow));
        {
            RyUndoStackHold hold;
            f.jointOf(f.elbow)->addJointParam(param.get());
            hold.accept("Add");
        }
        QSignalSpy removal(param.get(), &RyLegacyJointParam::aboutToBeRemoved);
        ryUndoStack()->undo();
        QCOMPARE(removal.size(), 1);
        QVERIFY(!param->getJoint());
        ryUndoStack()->redo();
        QCOMPARE(param->getJoint(), f.jointOf(f.elbow));
    }

    void everyChangeIsToldOnce()
    {
        const ParamArm f;
        QSignalSpy changed(f.binding, &RyModifier::modifierChanged);
        RyLegacyBendParam *bend = f.bendOf(f.elbow, "jointz");
        const auto told = [&changed] {
            const int count = changed.size();
            changed.clear();
            return count;
        };
        bend->setStaticA(1.2f);
        QCOMPARE(told(), 1);
        bend->setStaticA(1.2f);
        QCOMPARE(told(), 0);
        bend->setApplyBulges(true);
        QCOMPARE(told(), 1);
        bend->setApplyBulges(true);
        QCOMPARE(told(), 0);
        bend->setAngles(1, 0.5f, -0.5f, -1);
        QCOMPARE(told(), 1);
        bend->setMatrices(RyMatrix4(RyMatrix3(), {1, 2, 3}), RyMatrix4(RyMatrix3(), {3, 2, 1}), true);
        QCOMPARE(told(), 1);
        bend->getDynamicSphere()->getXScaleControl()->setValue(1.5f);
        QCOMPARE(told(), 1);
        bend->setDriver(f.hand);
        QCOMPARE(told(), 1);
        f.jointOf(f.hand)->setBone(nullptr);
        QCOMPARE(told(), 1);
        f.jointOf(f.elbow)->removeJointParam(bend);
        QCOMPARE(told(), 1);
        f.binding->removeJoint(f.jointOf(f.elbow));
        QCOMPARE(told(), 1);
    }

    void editOfTheBindingIsToldAtItsEnd()
    {
        const ParamArm f;
        QSignalSpy changed(f.binding, &RyModifier::modifierChanged);
        f.binding->beginEdit();
        f.bendOf(f.elbow, "jointz")->setStaticA(1.2f);
        f.binding->removeJoint(f.jointOf(f.hand));
        QCOMPARE(changed.size(), 0);
        f.binding->finishEdit();
        QCOMPARE(changed.size(), 1);
        f.binding->beginEdit();
        f.binding->finishEdit();
        QCOMPARE(changed.size(), 1);
    }

    void undoIsToldLikeTheEdit()
    {
        const ParamArm f;
        {
            RyUndoStackHold hold;
            f.bendOf(f.elbow, "jointz")->setAxis(0);
            hold.accept("Axis");
        }
        QSignalSpy changed(f.binding, &RyModifier::modifierChanged);
        ryUndoStack()->undo();
        QCOMPARE(changed.size(), 1);
        ryUndoStack()->redo();
        QCOMPARE(changed.size(), 2);
    }

    void groupIsThatOfTheNearestBoneWithOne()
    {
        const ParamArm f;
        RySelectionMap *map = f.skeleton->getSelectionMap();
        QCOMPARE(f.jointOf(f.hand)->getGroupName(), QString()); // everything
        map->addPair("upper", f.arm, true);
        for (const RyBone *bone : {f.arm, f.elbow, f.hand})
            QCOMPARE(f.jointOf(bone)->getGroupName(), QString("upper"));
        map->addPair("fore arm", f.elbow, true);
        QCOMPARE(f.jointOf(f.arm)->getGroupName(), QString("upper"));
        QCOMPARE(f.jointOf(f.elbow)->getGroupName(), QString("fore arm"));
        QCOMPARE(f.jointOf(f.hand)->getGroupName(), QString("fore arm"));
        map->addPair("all", f.skeleton.get(), true); // no bone
        map->removePair(map->findPair("upper"));
        QCOMPARE(f.jointOf(f.arm)->getGroupName(), QString());
        f.skeleton->setSelectionMap(nullptr);
        QCOMPARE(f.jointOf(f.elbow)->getGroupName(), QString());
        f.jointOf(f.elbow)->setBone(nullptr);
        const RyLegacyJoint empty;
        QCOMPARE(empty.getGroupName(), QString());
    }
};

RY_TEST(RyLegacyBindingTest)
#include "tst_RyLegacyBinding.moc"
