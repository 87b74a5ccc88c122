#include "support/RyTest.h"

#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/operations/createChildBone.h"
#include "pluginsource/RyJointTools/operations/createSiblingBone.h"
#include "pluginsource/RyJointTools/operations/deleteBone.h"
#include "pluginsource/RyJointTools/operations/reparentBone.h"
#include "pluginsource/RyJointTools/operations/splitBone.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/undo/RyUndoStackHold.h"

#include <random>

/// Actions that add and remove bones, on real characters.
class RyStructuralActionsTest : public QObject
{
    Q_OBJECT

private slots:
    void undo_data();
    void undo();
    void characters_data();
    void characters();
};

static RyFigure *openFigure(const QString &path)
{
    QString error;
    if (!RySceneFile::open(ryScene(), path, &error))
        return nullptr;
    for (RySkeleton *skeleton : ryScene()->getSkeletons()) {
        auto *figure = qobject_cast<RyFigure *>(skeleton);
        if (figure && figure->getSkinBinding())
            return figure;
    }
    return nullptr;
}

void RyStructuralActionsTest::undo_data()
{
    QTest::addColumn<QString>("operation");
    QTest::newRow("delete") << "delete";
    QTest::newRow("delete the top bone") << "delete top";
    QTest::newRow("split") << "split";
    QTest::newRow("sibling") << "sibling";
    QTest::newRow("child") << "child";
    QTest::newRow("reparent") << "reparent";
}

/// What the operations write is recorded wherever somebody records, though the actions themselves open no hold.
void RyStructuralActionsTest::undo()
{
    QFETCH(QString, operation);
    RySkinnedScene scene(RySkinnedScene::Both);
    scene.pose();
    scene.figure->setSelectionMap(new RySelectionMap);
    scene.figure->getSelectionMap()->addPair(QStringLiteral("thigh"), scene.lThigh, false);
    scene.figure->getSelectionMap()->addPair(QStringLiteral("hip"), scene.hip, false);
    const QString before = scene.dump();
    const std::vector<RyVec3> shown = scene.shown();
    RyUndoStackHold hold;
    if (operation == "delete")
        deleteBone(scene.lThigh);
    else if (operation == "delete top")
        deleteBone(scene.hip);
    else if (operation == "split")
        splitBone(scene.lThigh);
    else if (operation == "sibling")
        createSiblingBone(scene.lThigh);
    else if (operation == "child")
        createChildBone(scene.lThigh, QStringLiteral("new"), QStringLiteral("New"), RyRotationOrder(2));
    else
        reparentBone(scene.lThigh, scene.rThigh);
    hold.accept(operation);
    const QString after = scene.dump();
    const std::vector<RyVec3> changed = scene.shown();
    QVERIFY(after != before);
    QCOMPARE(ryFaultsOf(scene.figure), QString());
    for (int round = 0; round < 2; ++round) {
        ryUndoStack()->undo();
        QCOMPARE(scene.dump(), before);
        QCOMPARE(ryLargestWay(scene.shown(), shown), 0.0f);
        QCOMPARE(ryFaultsOf(scene.figure), QString());
        ryUndoStack()->redo();
        QCOMPARE(scene.dump(), after);
        QCOMPARE(ryLargestWay(scene.shown(), changed), 0.0f);
        QCOMPARE(ryFaultsOf(scene.figure), QString());
    }
}

void RyStructuralActionsTest::characters_data()
{
    QTest::addColumn<QString>("file");
    for (const char *file : {"CesiumMan.glb", "Fox.glb", "kaykit_knight.glb", "mh_default_rig.glb"})
        QTest::newRow(file) << QString::fromLatin1(file);
}

void RyStructuralActionsTest::characters()
{
    QFETCH(QString, file);
    const QString path = ryModel(file);
    if (path.isEmpty())
        QSKIP("this character is not on this machine");
    RyWindowScene scene;
    RyFigure *figure = openFigure(path);
    QVERIFY(figure);
    QCOMPARE(ryFaultsOf(figure), QString());
    const RySkinBinding *skin = figure->getSkinBinding();
    std::mt19937 random(ryTestSeed());
    const auto pick = [&] {
        const std::vector<RyBone *> bones = figure->getAllBones();
        return bones[random() % bones.size()];
    };
    for (RyBone *bone : figure->getAllBones()) {
        bone->getXRotControl()->setValue(float(random() % 60) - 30.0f);
        bone->getZRotControl()->setValue(float(random() % 60) - 30.0f);
    }
    RyObject *object = figure->getObject();
    std::vector<RyVec3> before = object->getDeformedPositions();
    float size = 0.0f;
    for (const RyVec3 &p : before)
        size = std::max(size, p.length());
    for (int turn = 0; turn < 12; ++turn) {
        RyBone *bone = pick();
        const bool bound = skin->findBoneBinding(bone);
        const int bindings = skin->getNumBoneBindings();
        const size_t bones = figure->getAllBones().size();
        ryScene()->setSelection({bone});
        RyJESplitBoneAction().executeAction();
        QCOMPARE(ryFaultsOf(figure), QString());
        QCOMPARE(figure->getAllBones().size(), bones + 1);
        QCOMPARE(skin->getNumBoneBindings(), bindings + (bound ? 1 : 0));
        const std::vector<RyVec3> after = object->getDeformedPositions();
        QVERIFY(ryLargestWay(after, before) < size * 1e-5f);
        before = after;
    }
    for (int turn = 0; turn < 6; ++turn) {
        ryScene()->setSelection({pick()});
        RyJECreateSiblingBoneAction().executeAction();
        QCOMPARE(ryFaultsOf(figure), QString());
        // The sibling is posed as the bone is.
        QVERIFY(ryLargestWay(object->getDeformedPositions(), before) < size * 1e-5f);
    }
    before = object->getDeformedPositions();
    ryScene()->setSelection({pick(), pick(), pick(), pick()});
    RyJEDuplicateBonesAction().executeAction();
    QCOMPARE(ryFaultsOf(figure), QString());
    QCOMPARE(ryLargestWay(object->getDeformedPositions(), before), 0.0f);
    while (figure->getAllBones().size() > 1) {
        ryScene()->setSelection({pick()});
        RyJEDeleteBoneAction().executeAction();
        if (figure->getAllBones().size() % 8 == 1)
            QCOMPARE(ryFaultsOf(figure), QString());
    }
    QCOMPARE(ryUndoStack()->count(), 0);
}

RY_TEST(RyStructuralActionsTest)

#include "tst_structuralActions.moc"
