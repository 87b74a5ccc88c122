#include "support/RyTest.h"

#include "RySymmetricScene.h"

#include "pluginsource/RyJointTools/operations/alignNode.h"
#include "pluginsource/RyJointTools/operations/mirrorBones.h"
#include "pluginsource/RyJointTools/operations/mirrorNode.h"
#include "pluginsource/RyJointTools/operations/snapPoints.h"
#include "pluginsource/RyJointTools/tool/handles/RyHandleId.h"
#include "rycore/app/RySymmetricEditingAction.h"
#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyRiggingEdit.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "rycore/undo/RyUndoStackLock.h"
#include "support/RyRandom.h"
#include "support/checkUndo.h"

#include <QStatusBar>

/// What is done to one side while symmetric editing is on.
class RySymmetricEditingTest : public QObject
{
    Q_OBJECT

private slots:
    void valuesOfEitherSide();
    void oneStepThatUndoes();
    void onlyInSteps();
    void offAgain();
    void bonesInThePlane();
    void anglesInThePlane();
    void bonesWithoutOpposite();
    void riggingEditOfOneSide();
    void riggingEditOfBothSides();
    void commandsThatMeanOneSide();
    void drags_data();
    void drags();
    void cancelledDrag();
    void oneAnnouncementForAnEdit();
    void alignAll();
    void followsNames();
    void treeThatChanges();
    void randomEdits();
    void actionSwitches();
};

void RySymmetricEditingTest::valuesOfEitherSide()
{
    SymmetricScene scene;
    QVERIFY(scene.error() < 1e-4);
    int i = 0;
    for (RyFloatProperty *control : riggingOf(scene.lShin))
        COMPARE_SYMMETRIC(scene.after([&] { control->setValue(control->getValue() + 3.0f + float(++i)); }));
    for (RyFloatProperty *control : riggingOf(scene.rFoot))
        COMPARE_SYMMETRIC(scene.after([&] { control->setValue(control->getValue() - float(++i)); }));
    COMPARE_SYMMETRIC(scene.after([&] { scene.rThigh->adjustOrientation(RyQuat({1, 2, 3}, 2.0f)); }));
    // Defaults are of either side alone.
    const RyVec3 before = scene.rShin->getOrigin(true);
    scene.after([&] { scene.lShin->setOrigin({5, 6, 7}, true); });
    QCOMPARE(scene.rShin->getOrigin(true), before);
    QCOMPARE(scene.rShin->getOrigin(), RyVec3(-5, 6, 7));
}

void RySymmetricEditingTest::oneStepThatUndoes()
{
    SymmetricScene scene;
    checkUndoInHold([&] {
        scene.lShin->setOrigin({9, 55, 4});
        scene.rThigh->setEndPoint({-8, 51, 3});
        scene.hip->setOrigin({7, 90, 1});
        scene.hip->setOrientation(RyQuat({1, 1, 0}, 0.8f));
    });
    QCOMPARE(ryUndoStack()->count(), 1);
    QVERIFY(scene.error() < 1e-3);
    ryUndoStack()->undo();
    QVERIFY(scene.error() < 1e-4);
}

void RySymmetricEditingTest::onlyInSteps()
{
    SymmetricScene scene;
    const std::vector<float> before = valuesOf(scene.rShin);
    scene.lShin->setOrigin({1, 2, 3});
    {
        RyUndoStackHold hold;
        {
            const RyUndoStackLock lock;
            scene.lShin->setOrigin({3, 2, 1});
        }
        hold.accept("Locked");
    }
    QCOMPARE(valuesOf(scene.rShin), before);
}

void RySymmetricEditingTest::offAgain()
{
    SymmetricScene scene;
    scene.after([&] { scene.lShin->setOrigin({1, 2, 3}); });
    scene.editing().setOn(false);
    QVERIFY(scene.after([&] { scene.lShin->setOrigin({3, 2, 1}); }) > 1.0);
}

void RySymmetricEditingTest::bonesInThePlane()
{
    SymmetricScene scene;
    COMPARE_SYMMETRIC(scene.after([&] { scene.hip->setOrigin({4, 95, 2}); }));
    QCOMPARE(scene.hip->getOrigin(), RyVec3(0, 95, 2));
    COMPARE_SYMMETRIC(scene.after([&] { scene.hip->getEndXControl()->setValue(-7.0f); }));
    COMPARE_SYMMETRIC(scene.after([&] { scene.hip->setOrientation(RyQuat({1, 0.3f, 0.2f}, 0.7f)); }));
    // An axis that is none of the mirror's may be the one along it: nothing flips.
    scene.editing().setOn(false);
    scene.hip->setOrientation(RyQuat({0, 0, 1}, 1.5707963f));
    scene.editing().setOn(true);
    scene.after([&] { scene.hip->setOrientation(RyQuat({0, 0, 1}, 1.5707963f) * RyQuat({0, 1, 0}, 0.2f)); });
    const RyVec3 along = scene.hip->getOrientation().multVec(RyVec3::axis(1));
    QVERIFY(std::abs(along[0]) > 0.99999f);
}

/// One number after the other, as the pane writes them, within an edit of the node and without.
void RySymmetricEditingTest::anglesInThePlane()
{
    for (const bool inEdit : {false, true}) {
        SymmetricScene scene;
        for (RyFloatProperty *control : {scene.hip->getOrientYControl(), scene.hip->getOrientZControl()}) {
            COMPARE_SYMMETRIC(scene.after([&] {
                if (inEdit)
                    scene.hip->beginEdit();
                control->setValue(control->getValue() + 20.0f);
                if (inEdit)
                    scene.hip->finishEdit();
            }));
        }
    }
}

void RySymmetricEditingTest::bonesWithoutOpposite()
{
    SymmetricScene scene;
    QStringList told;
    QObject listener;
    QObject::connect(&scene.editing(), &RySymmetricEditing::unmatchedEdited, &listener,
                     [&](const RyNode *node) { told << node->getName(); });
    scene.after([&] {
        scene.jaw->setOrigin({3, 119, 6});
        scene.jaw->setEndPoint({3, 117, 12});
    });
    QCOMPARE(scene.jaw->getOrigin(), RyVec3(3, 119, 6));
    QCOMPARE(told, QStringList("lowerJaw"));
    scene.after([&] { scene.lShin->setOrigin({3, 2, 1}); });
    scene.after([&] { scene.jaw->setOrigin({3, 119, 7}); });
    QCOMPARE(told.size(), 2);
}

void RySymmetricEditingTest::riggingEditOfOneSide()
{
    SymmetricScene scene;
    COMPARE_SYMMETRIC(scene.after([&] {
        {
            const RyRiggingEdit edit;
            const std::vector<float> before = valuesOf(scene.rShin);
            scene.lShin->setOrigin({8, 49, 2});
            scene.lShin->setOrientation(RyQuat({3, 1, 2}, 1.1f));
            scene.lFoot->setEndPoint({7, 3, 12});
            scene.hip->setOrigin({2, 97, 1});
            scene.hip->setOrientation(RyQuat({1, 0.2f, 0}, 1.1f));
            QCOMPARE(valuesOf(scene.rShin), before);
        }
        QCOMPARE(scene.rShin->getOrigin(), RyVec3(-8, 49, 2));
    }));
}

void RySymmetricEditingTest::riggingEditOfBothSides()
{
    SymmetricScene scene;
    scene.after([&] {
        const RyRiggingEdit edit;
        scene.lShin->setOrigin({8, 49, 2});
        scene.rShin->setOrigin({-20, 33, 1});
        scene.hip->setOrigin({2, 97, 1});
        scene.rFoot->setOrigin({-5, 6, 7});
    });
    QCOMPARE(scene.lShin->getOrigin(), RyVec3(8, 49, 2));
    QCOMPARE(scene.rShin->getOrigin(), RyVec3(-20, 33, 1));
    QCOMPARE(scene.hip->getOrigin(), RyVec3(2, 97, 1));
    QCOMPARE(scene.lFoot->getOrigin(), RyVec3(5, 6, 7));
}

void RySymmetricEditingTest::commandsThatMeanOneSide()
{
    SymmetricScene scene;
    scene.after([&] { scene.lShin->setOrigin({8, 49, 2}); });
    RyUndoStackHold hold;
    MirrorOptions options;
    options.axis = 2;
    mirrorBones(scene.lFoot, options, [](RyNode *source, RyNode *target, int axis) {
        mirrorNode(source, target, axis);
        return true;
    });
    hold.accept("Mirror");
    COMPARE_SYMMETRIC(reflectionError(scene.lFoot, scene.rFoot, 2, false, 100.0));
    const RySymmetricEditing::Suspension suspension;
    QVERIFY(scene.after([&] { scene.lShin->setOrigin({1, 1, 1}); }) > 1.0);
}

void RySymmetricEditingTest::drags_data()
{
    QTest::addColumn<int>("modes"); // 1: propagate, 2: snap, 4: align
    for (int modes = 0; modes < 8; ++modes)
        QTest::addRow("%d", modes) << modes;
}

/// With the mouse, on either side and in the plane, and with all that the tool makes of it.
void RySymmetricEditingTest::drags()
{
    QFETCH(int, modes);
    for (const int id : {HandleId::CenterPoint, HandleId::EndPoint, HandleId::OriginX, HandleId::OriginY,
                         HandleId::EndPointX, HandleId::EndPointZ}) {
        SymmetricScene scene;
        scene.tool->setPropagateTranslation(modes & 1);
        scene.tool->setAutoSnapEndPoints(modes & 2);
        scene.tool->setAutoAlign(modes & 4);
        for (RyNode *node : {scene.lThigh, scene.rShin, scene.hip}) {
            scene.select(node);
            const QString before = scene.dump();
            const int steps = ryUndoStack()->count();
            const QPoint from = scene.pixelOf(node->getWSPos());
            scene.drag(id, from, from + QPoint(37, -22));
            QCOMPARE(ryUndoStack()->count(), steps + 1);
            const double error = scene.error();
            QVERIFY2(error < 2e-3, qPrintable(QString("%1 %2: %3").arg(node->getName()).arg(id).arg(error)));
            if (scene.dump() != before)
                checkLastStep(before);
        }
    }
}

void RySymmetricEditingTest::cancelledDrag()
{
    SymmetricScene scene;
    scene.select(scene.lThigh);
    const QString before = scene.dump();
    const QPoint from = scene.pixelOf(scene.lThigh->getWSPos());
    scene.press(1, from);
    scene.move(from + QPoint(30, 30));
    QVERIFY(scene.dump() != before);
    scene.tool->cancelDrag();
    QCOMPARE(scene.dump(), before);
    QCOMPARE(scene.rThigh->editLevel(), 0);
}

void RySymmetricEditingTest::oneAnnouncementForAnEdit()
{
    SymmetricScene scene;
    int announced = 0;
    QObject::connect(scene.rShin, &RyNode::riggingChanged, scene.tool, [&] { ++announced; });
    scene.after([&] {
        scene.lShin->beginEdit();
        for (int i = 0; i < 5; ++i)
            scene.lShin->setOrigin({float(i), 50, 2});
        QCOMPARE(scene.rShin->getOrigin(), RyVec3(-4, 50, 2));
        QCOMPARE(announced, 0);
        scene.lShin->finishEdit();
    });
    QCOMPARE(announced, 1);
    QCOMPARE(scene.rShin->editLevel(), 0);
    // Also where the bones are paired anew in between.
    scene.after([&] {
        scene.lShin->beginEdit();
        scene.lShin->setOrigin({3, 50, 2});
        scene.rFoot->setName("rToe");
        QCOMPARE(scene.rShin->editLevel(), 0);
        scene.lShin->finishEdit();
    });
}

/// The right side of what Align All Bones gives by itself, and no other.
void RySymmetricEditingTest::alignAll()
{
    SymmetricScene scene;
    scene.after([&] { alignAllBones(*scene.figure); });
    const auto with = scene.values();
    ryUndoStack()->undo();
    scene.editing().setOn(false);
    scene.after([&] { alignAllBones(*scene.figure); });
    QCOMPARE(scene.changedSince(with), QString());
}

void RySymmetricEditingTest::followsNames()
{
    SymmetricScene scene;
    scene.after([&] { scene.lShin->setOrigin({1, 2, 3}); });
    scene.rShin->setName("calf");
    scene.rShin->setOrigin({-50, 0, 0}, true);
    const std::vector<float> before = valuesOf(scene.rShin);
    scene.after([&] { scene.lShin->setOrigin({3, 2, 1}); });
    QCOMPARE(valuesOf(scene.rShin), before);
    scene.rShin->setName("RSHIN");
    scene.after([&] { scene.lShin->setOrigin({4, 5, 6}); });
    QCOMPARE(scene.rShin->getOrigin(), RyVec3(-4, 5, 6));
}

void RySymmetricEditingTest::treeThatChanges()
{
    SymmetricScene scene;
    scene.after([&] { scene.lShin->setOrigin({1, 2, 3}); });
    {
        RyUndoStackHold hold;
        scene.rThigh->removeNodeChild(scene.rShin);
        ryScene()->removeNode(scene.rShin);
        scene.lShin->setOrigin({8, 8, 8});
        hold.accept("Remove");
    }
    scene.after([&] { scene.lShin->setOrigin({9, 9, 9}); });
    ryUndoStack()->undo();
    ryUndoStack()->undo();
    scene.after([&] { scene.lShin->setOrigin({7, 8, 9}); });
    QCOMPARE(scene.rShin->getOrigin(), RyVec3(-7, 8, 9));
}

/// All kinds of edits of a symmetric character.
void RySymmetricEditingTest::randomEdits()
{
    RyWindowScene stage;
    ryScene()->clear();
    QString error;
    QVERIFY2(RySceneFile::open(ryScene(), QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb"), &error),
             qPrintable(error));
    RySkeleton *skeleton = ryScene()->getSkeletons().front();
    MirrorOptions options;
    options.nodes = MirrorOptions::RootRecursive;
    options.direction = MirrorOptions::LeftToRight;
    mirrorBones(skeleton, options, [](RyNode *source, RyNode *target, int axis) {
        mirrorNode(source, target, axis);
        return true;
    });
    RySymmetricEditing &editing = RySymmetricEditing::of(*ryScene());
    editing.setOn(true);
    const RyBonePairing pairing(*skeleton, 0);
    const std::vector<RyBone *> bones = skeleton->getAllBones();
    RyRandom random;
    stage.tool->setPropagateTranslation(true);
    for (int edit = 0; edit < 200; ++edit) {
        RyBone *bone = bones[size_t(random.integer(0, int(bones.size()) - 1))];
        stage.select(bone);
        const QString before = stage.dump();
        const int kind = random.integer(0, 6);
        {
            RyUndoStackHold hold;
            if (kind == 0)
                bone->setOrigin(bone->getOrigin() + random.vector(3));
            else if (kind == 1)
                bone->setEndPoint(bone->getEndPoint() + random.vector(3));
            else if (kind == 2)
                bone->setOrientation(RyQuat(random.vector(), float(random.number(-3, 3))));
            else if (kind == 3)
                alignNode(bone);
            else if (kind == 4)
                snapEndPoint(bone);
            else if (kind == 5)
                snapCenterPoint(bone);
            else
                bone->getOrientYControl()->setValue(float(random.number(-90, 90)));
            hold.accept("Edit");
        }
        QCOMPARE(ryUndoStack()->count(), edit + 1);
        for (const RyBonePairing::Pair &pair : pairing.pairs()) {
            const double gap = reflectionError(pair.first, pair.second, 0, false, double(pairing.size()));
            QVERIFY2(gap < 1e-5 * double(pairing.size()),
                     qPrintable(QString("%1 %2: %3").arg(pair.first->getName()).arg(kind).arg(gap)));
        }
        for (const RyNode *node : pairing.alone()) {
            if (pairing.isOnPlane(node))
                QVERIFY(std::abs(node->getOrigin()[0]) + std::abs(node->getEndPoint()[0]) < 1e-3f * pairing.size());
        }
        if (edit % 10 == 0 && stage.dump() != before)
            checkLastStep(before);
    }
    editing.setOn(false);
}

void RySymmetricEditingTest::actionSwitches()
{
    SymmetricScene scene;
    scene.editing().setOn(false);
    RySymmetricEditingAction action;
    action.init();
    QVERIFY(action.isCheckable() && !action.isChecked());
    action.trigger();
    QVERIFY(scene.editing().isOn());
    scene.after([&] { scene.jaw->setOrigin({3, 119, 6}); });
    QCOMPARE(scene.window->statusBar()->currentMessage(),
             QStringLiteral("lowerJaw has no opposite: only this bone is edited."));
    scene.editing().setOn(false);
    QVERIFY(!action.isChecked());
}

RY_TEST(RySymmetricEditingTest)
#include "tst_symmetricEditing.moc"
