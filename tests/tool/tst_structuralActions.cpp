#include "support/RyTest.h"

#include "RySkinnedScene.h"

#include "pluginsource/RyJointTools/ryjeaction/RyJECreationActions.h"
#include "pluginsource/RyJointTools/ryjeaction/RyJEDeleteActions.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"

#include <random>

/// Actions that add and remove bones, on real characters.
class RyStructuralActionsTest : public QObject
{
    Q_OBJECT

private slots:
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
