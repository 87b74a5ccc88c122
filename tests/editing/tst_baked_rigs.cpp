#include "support/RyTest.h"

#include "EditingStage.h"
#include "RandomActions.h"
#include "io/CharacterScene.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyShape.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/restore/RyRestorePoints.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <random>

namespace {

using Points = std::vector<RyVec3>;

Points shownIn(const RyScene &scene)
{
    Points all;
    for (const RySkeleton *skeleton : scene.getSkeletons()) {
        if (!skeleton->getObject())
            continue;
        for (const RyVec3 &point : skeleton->getObject()->getDeformedPositions())
            all.push_back(skeleton->worldMap().mapPoint(point));
    }
    return all;
}

/// Origins, posed end points and points on the axes of all bones.
Points jointsIn(const RyScene &scene)
{
    Points all;
    for (const RySkeleton *skeleton : scene.getSkeletons()) {
        for (const RyBone *bone : skeleton->getAllBones()) {
            all.push_back(bone->getWSPos());
            all.push_back(bone->getWSEndPoint());
            for (const RyVec3 &axis : {RyVec3(1, 0, 0), RyVec3(0, 1, 0), RyVec3(0, 0, 1)})
                all.push_back(bone->getWSPos() +
                              10.0f * bone->getWSRot().multVec(bone->getOrientation().multVec(axis)));
        }
    }
    return all;
}

float largestWay(const Points &a, const Points &b)
{
    float largest = a.size() == b.size() ? 0.0f : 1e30f;
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        largest = std::max(largest, (a[i] - b[i]).length());
    return largest;
}

/// That of what lies flat: its largest side.
float heightOf(const RyScene &scene)
{
    RyBox3 box;
    for (const RyVec3 &point : shownIn(scene))
        box.include(point);
    const RyVec3 size = box.getMax() - box.getMin();
    const float most = std::max({size.x, size.y, size.z});
    return size.y > 0.01f * most ? size.y : most;
}

/// Without its lines about bones' poses: the values of the bulges, and which maps they have.
QStringList bulgesIn(const RyScene &scene)
{
    QStringList lines;
    for (const RySkeleton *skeleton : scene.getSkeletons()) {
        const RySkinBinding *skin = RySkinBinding::findSkin(skeleton);
        for (const RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
            for (int axis = 0; axis < 3; ++axis) {
                const RyBulgeBinding *bulge = binding->getBulgeBinding(axis);
                if (!bulge)
                    continue;
                float values[4] = {};
                bulge->getBulgeValues(values[0], values[1], values[2], values[3]);
                QString line = QStringLiteral("%1 %2").arg(binding->getBone()->getName()).arg(axis);
                for (const float value : values)
                    line += QStringLiteral(" %1").arg(double(value));
                for (const RyWeightMap *map : {bulge->getLeftWeights(), bulge->getRightWeights()}) {
                    line += QStringLiteral(" ");
                    for (int i = 0; map && i < map->getNumAffected(); ++i)
                        line += QStringLiteral("%1=%2,")
                                    .arg(map->getAffectedIndices()[i])
                                    .arg(map->getAffectedWeights()[i]);
                }
                lines.append(line);
            }
        }
    }
    return lines;
}

} // namespace

/// Bakes of rigs with everything that moves vertices at once: bulges, morphs, control bones that are posed beside their
/// bones, on figures that stand elsewhere about a centre of their own, turned and scaled.
class BakedRigsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_random.seed(ryTestSeed()); }

    void nothingMoves_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("pose");
        QStringList paths = {QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb")};
        for (const QString &name : characterNames()) {
            if (!ryModel(name).isEmpty())
                paths.append(ryModel(name));
        }
        for (const QString &path : qAsConst(paths)) {
            for (int pose = 0; pose < 5; ++pose)
                QTest::addRow("%s %d", qPrintable(QFileInfo(path).fileName()), pose) << path << pose;
        }
    }
    void nothingMoves()
    {
        QFETCH(QString, path);
        EditingStage stage(path);
        const float height = heightOf(*ryScene());
        RandomActions::addShapes();
        addControls(stage);
        place();
        pose(height);
        const float slack = 1e-5f * height;
        const Points shown = shownIn(*ryScene()), joints = jointsIn(*ryScene());
        const QStringList bulges = bulgesIn(*ryScene());
        QVERIFY(!bulges.isEmpty());
        QVERIFY(changesWithoutBulges(shown) > slack);
        QVERIFY(largestWay(shownIn(*ryScene()), shown) == 0.0f);
        std::vector<RyNode *> figures;
        for (RySkeleton *skeleton : ryScene()->getSkeletons())
            figures.push_back(skeleton);
        stage.select({figures.front()});
        const QString before = stage.dump();

        for (RyNode *figure : figures) {
            stage.select({figure});
            QCOMPARE(stage.run("RyJEBakeRotationsAction"), QString());
        }
        stage.select({});
        const QString baked = stage.dump();
        for (const RyBone *bone : stage.bones())
            QVERIFY2(bone->getLocalMap() == RyAffine(), qPrintable(bone->getName()));
        const auto far = [height](float way) { return QString::number(double(way / height)).toLatin1(); };
        QVERIFY2(largestWay(shownIn(*ryScene()), shown) < slack, far(largestWay(shownIn(*ryScene()), shown)));
        QVERIFY2(largestWay(jointsIn(*ryScene()), joints) < slack, far(largestWay(jointsIn(*ryScene()), joints)));
        // They bulge from the new rest on as they did from the old one.
        QCOMPARE(bulgesIn(*ryScene()), bulges);

        const QTemporaryDir folder;
        const QString saved = folder.filePath(QStringLiteral("baked.glb"));
        QString error;
        QVERIFY2(RySceneFile::save(ryScene(), saved, &error), qPrintable(error));
        QVERIFY(ryRestorePoints()->restore(ryRestorePoints()->count() - 1)); // before the first bake
        QCOMPARE(stage.dump(), before);
        QVERIFY(largestWay(shownIn(*ryScene()), shown) == 0.0f);

        const CharacterScene again(saved);
        QVERIFY(sameDumps(rySceneDump(again.scene), baked));
        QVERIFY2(largestWay(shownIn(again.scene), shown) < slack, far(largestWay(shownIn(again.scene), shown)));
        QVERIFY2(largestWay(jointsIn(again.scene), joints) < slack, far(largestWay(jointsIn(again.scene), joints)));
        // Other programs show the same: nothing bulges at rest.
        QVERIFY(largestDistance(again.shown(), positionsOf(again.file, again.unit())) < double(slack));
    }

private:
    float number(float low, float high) { return std::uniform_real_distribution<float>(low, high)(m_random); }

    static void addControls(EditingStage &stage)
    {
        for (RySkeleton *skeleton : ryScene()->getSkeletons()) {
            if (!RySkinBinding::findSkin(skeleton))
                continue;
            std::vector<RyNode *> bones;
            for (RyBone *bone : skeleton->getAllBones())
                bones.push_back(bone);
            stage.select(bones);
            QCOMPARE(stage.run("RyJECreateControlBonesAction"), QString());
        }
        ryUndoStack()->clearAll();
    }
    static void place()
    {
        for (RySkeleton *figure : ryScene()->getSkeletons()) {
            figure->setOrigin({10, 20, 30}, true);
            figure->getXTransControl()->setValue(7.0f);
            figure->getZTransControl()->setValue(-11.0f);
            figure->getYRotControl()->setValue(35.0f);
            figure->getXRotControl()->setValue(-20.0f);
            figure->getScaleControl()->setValue(1.25f);
        }
    }
    /// Bones and, by as much again, their control bones.
    void pose(float height)
    {
        for (RySkeleton *figure : ryScene()->getSkeletons()) {
            for (const RyBone *bone : figure->getAllBones()) {
                for (RyFloatProperty *turn : {bone->getXRotControl(), bone->getYRotControl(), bone->getZRotControl()})
                    turn->setValue(number(-25, 25));
                if (m_random() % 4 == 0)
                    bone->getXTransControl()->setValue(number(-0.01f, 0.01f) * height);
                if (m_random() % 6 == 0)
                    bone->getScaleControl()->setValue(number(0.9f, 1.1f));
            }
            const RyShape *shape = RyShape::getCurrentShapeForNode(figure);
            for (const RyMorph *morph : shape ? shape->getMorphs() : std::vector<RyMorph *>())
                morph->getValueControl()->setValue(number(0.2f, 1));
        }
        ryUndoStack()->clearAll();
        ryRestorePoints()->clear();
        ryRestorePoints()->setMost(int(ryScene()->getSkeletons().size()) + 2);
    }
    /// By how much the vertices of the scene would lie elsewhere if nothing bulged; nothing is left changed.
    static float changesWithoutBulges(const Points &shown)
    {
        std::vector<std::pair<RyFloatProperty *, float>> values;
        for (const RySkeleton *skeleton : ryScene()->getSkeletons()) {
            const RySkinBinding *skin = RySkinBinding::findSkin(skeleton);
            for (const RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
                for (int axis = 0; axis < 3; ++axis) {
                    const RyBulgeBinding *bulge = binding->getBulgeBinding(axis);
                    if (!bulge)
                        continue;
                    for (RyFloatProperty *value :
                         {bulge->getPosLeftBulgeController(), bulge->getNegLeftBulgeController(),
                          bulge->getPosRightBulgeController(), bulge->getNegRightBulgeController()})
                        values.emplace_back(value, value->getValue());
                }
            }
        }
        for (const auto &[property, value] : values)
            property->setValue(0.0f);
        const float way = largestWay(shownIn(*ryScene()), shown);
        for (const auto &[property, value] : values)
            property->setValue(value);
        return way;
    }

    std::mt19937 m_random;
};

RY_TEST(BakedRigsTest)

#include "tst_baked_rigs.moc"
