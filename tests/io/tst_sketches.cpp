#include "CharacterScene.h"
#include "FigureSketch.h"
#include "KeptClips.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyNear.h"
#include "support/RyTest.h"

#include <Eigen/Geometry>

using nlohmann::json;

namespace {

Eigen::Matrix4d placed(double x, double y, double z, const Eigen::Matrix3d &linear = Eigen::Matrix3d::Identity())
{
    Eigen::Matrix4d m = Eigen::Matrix4d::Identity();
    m.topLeftCorner<3, 3>() = linear;
    m.topRightCorner<3, 1>() = Eigen::Vector3d(x, y, z);
    return m;
}

Eigen::Matrix3d turned(double degrees, const Eigen::Vector3d &axis)
{
    return Eigen::AngleAxisd(degrees * M_PI / 180.0, axis.normalized()).toRotationMatrix();
}

json quaternion(double degrees, const Eigen::Vector3d &axis)
{
    const Eigen::Quaterniond q(Eigen::AngleAxisd(degrees * M_PI / 180.0, axis.normalized()));
    return {q.x(), q.y(), q.z(), q.w()};
}

} // namespace

class SketchesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_random.seed(ryTestSeed()); }
    void init() { ryUndoStack()->clearAll(); }

    /// The file's node holds the parent's scale as well, against which the bone stands; the numbers of its pose come
    /// back all the same, of which many make that node.
    void poseOfABoneThatTakesNoScale()
    {
        FigureSketch sketch;
        sketch.write(path());
        CharacterScene scene(path());
        RyBone *low = scene.bones()[0];
        RyBone *high = scene.bones()[1];
        low->getSkeleton()->getYRotControl()->setValue(30.0f);
        low->getScaleControl()->setValue(1.5f);
        low->getXRotControl()->setValue(-20.0f);
        low->getZTransControl()->setValue(3.0f);
        high->setInheritScale(false);
        high->setOrigin(high->getOrigin() + RyVec3(4, -2, 1));
        float number = 1.3f;
        for (RyFloatProperty *each :
             {high->getScaleControl(), high->getXScaleControl(), high->getYScaleControl(), high->getZScaleControl()})
            each->setValue(number -= 0.17f);
        high->getXTransControl()->setValue(2.5f);
        high->getZRotControl()->setValue(200.0f);
        QString error;
        QVERIFY2(RySceneFile::save(&scene.scene, m_folder.filePath("saved.gltf"), &error), qPrintable(error));
        const CharacterScene again(m_folder.filePath("saved.gltf"));
        QCOMPARE(again.messages, QStringList());
        QVERIFY(sameDumps(rySceneDump(again.scene), rySceneDump(scene.scene)));
        QCOMPARE(again.bones()[1]->getYScaleControl()->getValue(), high->getYScaleControl()->getValue());
        QVERIFY(largestDistance(again.shown(), positionsOf(again.file, again.unit())) < 5e-3);
    }

    void plain()
    {
        FigureSketch sketch;
        check(sketch);
        CharacterScene scene(path());
        QCOMPARE(scene.unit(), 100.0);
        QCOMPARE(scene.bones().size(), size_t(2));
        QVERIFY(ryIsNear(scene.bones()[1]->getOrigin(), {0, 100, 0}));
        QVERIFY(!scene.bones()[0]->isPosed() && !scene.bones()[1]->isPosed());
        // The leaf goes on along its parent's axis as far as its points reach.
        QVERIFY(ryIsNear(scene.bones()[1]->getEndPoint(), {0, 200, 0}, 0.1f));
    }

    /// Where the nodes stand otherwise than at bind, the difference is the pose, and the rest is the bind.
    void restDiffersFromPose()
    {
        FigureSketch sketch;
        sketch.tree["nodes"][2]["rotation"] = quaternion(90, {0, 0, 1});
        sketch.tree["nodes"][2]["translation"] = {0, 1.1, 0};
        check(sketch);
        CharacterScene scene(path());
        RyBone *high = scene.bones()[1];
        QVERIFY(ryIsNear(high->getOrigin(), {0, 100, 0}));
        QVERIFY(ryIsNear(high->getWSPos(), {0, 110, 0}));
        QVERIFY(std::fabs(high->getZRotControl()->getValue() - 90.0f) < 1e-3f);
        QVERIFY(std::fabs(high->getYTransControl()->getValue() - 10.0f) < 1e-3f);
        QVERIFY(ryIsNear(high->getWSEndPoint(), {-100, 110, 0}, 0.1f));
        high->clearPose();
        QVERIFY(largestDistance(scene.shown(), scene.atRest()) < 1e-3);
    }

    /// A figure of another unit under a turned and scaled root.
    void turnAndScaleAboveTheSkeleton()
    {
        FigureSketch sketch;
        sketch.tree["nodes"][0]["rotation"] = quaternion(-90, {0, 1, 0});
        sketch.tree["nodes"][0]["scale"] = {0.04, 0.04, 0.04};
        sketch.tree["nodes"][0]["translation"] = {3, 0, 0};
        check(sketch);
        CharacterScene scene(path());
        // 0.08 units high: a unit is taken that makes a figure of it.
        QCOMPARE(scene.unit(), 1000.0);
        QVERIFY(ryIsNear(scene.bones()[0]->getOrigin(), {3000, 0, 0}, 1e-2f));
        QVERIFY(ryIsNear(scene.bones()[1]->getOrigin(), {3000, 40, 0}, 1e-2f));
        QVERIFY(!scene.bones()[1]->isPosed());
    }

    void scaleInsideTheSkeleton_data()
    {
        QTest::addColumn<QVector<double>>("scale");
        QTest::newRow("even") << QVector<double>{2, 2, 2};
        QTest::newRow("uneven") << QVector<double>{2, 0.5, 1.5};
        QTest::newRow("mirrored") << QVector<double>{-1, 1, 1};
    }
    void scaleInsideTheSkeleton()
    {
        QFETCH(QVector<double>, scale);
        const Eigen::Matrix3d stretch = Eigen::Vector3d(scale[0], scale[1], scale[2]).asDiagonal();
        FigureSketch sketch;
        // The lower joint holds the scale at bind, the upper one hangs below it, turned.
        sketch.tree["nodes"][1]["scale"] = {scale[0], scale[1], scale[2]};
        sketch.tree["nodes"][2]["translation"] = {0, 1.0 / scale[1], 0};
        sketch.tree["nodes"][2]["rotation"] = quaternion(30, {1, 1, 0});
        const Eigen::Matrix4d low = placed(0, 0, 0, stretch);
        const Eigen::Matrix4d high = low * placed(0, 1.0 / scale[1], 0, turned(30, {1, 1, 0}));
        sketch.tree["skins"][0]["inverseBindMatrices"] = sketch.addBinds({low, high});
        check(sketch);
        CharacterScene scene(path());
        QVERIFY(ryIsNear(scene.bones()[1]->getOrigin(), {0, 100, 0}));
        QVERIFY(largestDistance(scene.shown(), scene.atRest()) < 1e-3);
    }

    /// A node between two joints is a bone without a binding, and both keep their places when it moves.
    void nodeBetweenTwoJoints()
    {
        FigureSketch sketch;
        sketch.tree["nodes"].push_back({{"name", "between"},
                                        {"translation", {0.3, 0.5, 0}},
                                        {"rotation", quaternion(40, {0, 0, 1})},
                                        {"children", {2}}});
        sketch.tree["nodes"][1]["children"] = {4};
        const Eigen::Vector3d at = turned(-40, {0, 0, 1}) * Eigen::Vector3d(-0.3, 0.5, 0);
        sketch.tree["nodes"][2]["translation"] = {at.x(), at.y(), at.z()};
        sketch.tree["nodes"][2]["rotation"] = quaternion(-40, {0, 0, 1});
        check(sketch);
        CharacterScene scene(path());
        QCOMPARE(scene.bones().size(), size_t(3));
        QCOMPARE(scene.bones()[1]->getName(), QStringLiteral("between"));
        QVERIFY(ryIsNear(scene.bones()[1]->getOrigin(), {30, 50, 0}));
        QVERIFY(ryIsNear(scene.bones()[2]->getOrigin(), {0, 100, 0}));
        QVERIFY(!scene.bones()[2]->isPosed());
    }

    void namesAreUnique()
    {
        FigureSketch sketch;
        sketch.tree["nodes"][1]["name"] = "b\u00f6ne: 1";
        sketch.tree["nodes"][2]["name"] = "b\u00f6ne: 1";
        check(sketch);
        CharacterScene scene(path());
        QCOMPARE(scene.bones()[0]->getName(), QString::fromUtf8("b\u00f6ne: 1"));
        QVERIFY(scene.bones()[1]->getName().startsWith(scene.bones()[0]->getName()));
        QVERIFY(scene.bones()[1]->getName() != scene.bones()[0]->getName());
        FigureSketch unnamed;
        unnamed.tree["nodes"][1].erase("name");
        check(unnamed);
        QCOMPARE(CharacterScene(path()).bones()[0]->getName(), QStringLiteral("joint1"));
    }

    /// Two skinned nodes with one mesh are two parts; two skins with joints in common are one figure.
    void twoSkins()
    {
        FigureSketch sketch;
        sketch.tree["skins"].push_back(sketch.tree["skins"][0]);
        sketch.tree["nodes"].push_back({{"name", "second"}, {"mesh", 0}, {"skin", 1}});
        sketch.tree["scenes"][0]["nodes"] = {0, 3, 4};
        check(sketch);
        CharacterScene scene(path());
        QCOMPARE(scene.scene.getSkeletons().size(), size_t(1));
        QCOMPARE(scene.shown().size(), size_t(2));
    }

    /// A second skin that binds the joints elsewhere: the rest is where the nodes stand.
    void skinsThatDisagree()
    {
        FigureSketch sketch;
        sketch.tree["skins"].push_back(sketch.tree["skins"][0]);
        sketch.tree["skins"][1]["inverseBindMatrices"] =
            sketch.addBinds({placed(0.5, 0, 0), placed(0.5, 1, 0, turned(20, {0, 0, 1}))});
        sketch.tree["meshes"].push_back(sketch.tree["meshes"][0]);
        sketch.tree["nodes"].push_back({{"name", "second"}, {"mesh", 1}, {"skin", 1}});
        sketch.tree["scenes"][0]["nodes"] = {0, 3, 4};
        check(sketch, true);
        CharacterScene scene(path());
        QVERIFY(!scene.messages.filter(QStringLiteral("rest of these joints")).isEmpty());
    }

    void withoutBinds()
    {
        FigureSketch sketch;
        sketch.tree["skins"][0].erase("inverseBindMatrices");
        sketch.tree["nodes"][2]["rotation"] = quaternion(25, {0, 0, 1});
        check(sketch, true);
    }

    /// A thing in the hand follows the hand, and goes back into the file.
    void propOnAJoint()
    {
        FigureSketch sketch;
        sketch.tree["meshes"].push_back(sketch.tree["meshes"][0]);
        json &primitive = sketch.tree["meshes"][1]["primitives"][0];
        primitive["attributes"].erase("JOINTS_0");
        primitive["attributes"].erase("WEIGHTS_0");
        sketch.tree["nodes"].push_back({{"name", "holder"}, {"translation", {0, 0.5, 0}}, {"children", {5}}});
        sketch.tree["nodes"].push_back(
            {{"name", "thing"}, {"translation", {0.5, 0, 0}}, {"rotation", quaternion(70, {1, 2, 3})}, {"mesh", 1}});
        sketch.tree["nodes"].push_back({{"name", "alone"}, {"translation", {2, 0, 0}}, {"mesh", 1}});
        sketch.tree["nodes"][2]["children"] = {4};
        sketch.tree["nodes"][2]["rotation"] = quaternion(35, {1, 0, 0});
        sketch.tree["scenes"][0]["nodes"] = {0, 3, 6};
        check(sketch);
        CharacterScene scene(path());
        QCOMPARE(scene.shown().size(), size_t(3));
        RyNode *thing = scene.scene.findNode(QStringLiteral("thing"));
        QVERIFY(thing && thing->getSkeleton() == scene.scene.getSkeletons().front());
        QVERIFY(!scene.scene.findNode(QStringLiteral("alone"))->getNodeParent());
        // Props move with their own controls too.
        thing->getXTransControl()->setValue(7.0f);
        scene.scene.findNode(QStringLiteral("alone"))->getYRotControl()->setValue(50.0f);
        scene.bones()[1]->getZRotControl()->setValue(20.0f);
        const QString saved = m_folder.filePath(QStringLiteral("props.gltf"));
        QString error;
        QVERIFY2(RySceneFile::save(&scene.scene, saved, &error), qPrintable(error));
        QVERIFY(largestDistance(scene.shown(), positionsOf(GltfEvaluator(saved.toStdString()), scene.unit())) < 2e-3);
        CharacterScene again(saved);
        QVERIFY(largestDistance(scene.shown(), again.shown()) < 2e-3);
        QVERIFY(again.messages.isEmpty());
    }

    void markedEnd()
    {
        FigureSketch sketch;
        sketch.tree["nodes"].push_back({{"name", "high_end"}, {"translation", {0.2, 0.7, 0}}});
        sketch.tree["nodes"][2]["children"] = {4};
        check(sketch);
        CharacterScene scene(path());
        RyBone *high = scene.bones()[1];
        QVERIFY(ryIsNear(high->getEndPoint(), {20, 170, 0}));
        // The mark follows the end point.
        high->adjustEndPoint({10, 150, 5});
        const QString saved = m_folder.filePath(QStringLiteral("marked.gltf"));
        QString error;
        QVERIFY2(RySceneFile::save(&scene.scene, saved, &error), qPrintable(error));
        const GltfEvaluator file(saved.toStdString());
        QVERIFY((file.worldPosition(file.node("high_end")) * 100.0 - Eigen::Vector3d(10, 150, 5)).norm() < 1e-3);
        CharacterScene again(saved);
        QVERIFY(ryIsNear(again.bones()[1]->getEndPoint(), {10, 150, 5}));
    }

    /// Everything that has no place in the format comes back from the extras.
    void whatTheExtrasHold()
    {
        FigureSketch sketch;
        sketch.write(path());
        CharacterScene scene(path());
        RySkeleton *figure = scene.scene.getSkeletons().front();
        RyBone *low = scene.bones()[0];
        RyBone *high = scene.bones()[1];
        auto *mesh = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(figure))->getFacetMesh();
        const std::vector<std::function<void()>> edits = {
            [&] {
                low->adjustEndPoint({1, 2, 3});
            },
            [&] {
                low->setEndPoint({4, 5, 6}, true);
            },
            [&] { high->setRotationOrder(RyRotationOrder(RyRotationOrder::ZXY)); },
            [&] { high->setLabel(QStringLiteral("H\u00f6he")); },
            [&] { high->setHidden(true); },
            [&] { low->setSelectable(false); },
            [&] { low->setPromoteSelection(true); },
            [&] { high->setInheritScale(false); },
            [&] {
                high->getXRotControl()->setMin(-20.0f);
                high->getXRotControl()->setMax(60.5f);
                high->getXRotControl()->setIsClamped(true);
            },
            [&] { low->setName(QStringLiteral("base")); },
            [&] {
                figure->setName(QStringLiteral("somebody"));
                figure->getObject()->setName(QStringLiteral("somebody"));
            },
            [&] {
                mesh->createFaceGroup(QStringLiteral("upper"));
                RyIndexList facets;
                for (const int facet : {9, 10, 12})
                    facets.addSortedIndex(facet);
                mesh->deselectAllFacets();
                mesh->selectFacetsByIndexList(facets, true);
                mesh->addSelectedFacetsToGroup(QStringLiteral("upper"));
                mesh->deselectAllFacets();
            },
            [&] {
                auto *map = new RySelectionMap;
                figure->setSelectionMap(map);
                map->addPair(QStringLiteral("upper"), high, true);
                map->addPair(QStringLiteral("nothing"), nullptr, true);
            },
            [&] { high->getXRotControl()->setValue(25.0f); },
            [&] { high->adjustOrientation(RyQuat(RyVec3(0, 1, 0), 0.5f)); },
        };
        QString last = rySceneDump(scene.scene);
        for (size_t i = 0; i < edits.size(); ++i) {
            edits[i]();
            const QString now = rySceneDump(scene.scene);
            QVERIFY2(now != last, qPrintable(QStringLiteral("edit %1 left no trace").arg(i)));
            last = now;
            const QString saved = m_folder.filePath(QStringLiteral("extras%1.gltf").arg(i));
            const QString alone = m_folder.filePath(QStringLiteral("alone%1.glb").arg(i));
            QString error;
            QVERIFY2(RySceneFile::save(&scene.scene, saved, &error), qPrintable(error));
            QVERIFY2(RySceneFile::saveWithoutSource(&scene.scene, alone, &error), qPrintable(error));
            CharacterScene again(saved);
            QVERIFY2(sameDumps(rySceneDump(again.scene), now), qPrintable(saved));
            CharacterScene fromAlone(alone);
            QVERIFY2(sameDumps(rySceneDump(fromAlone.scene), now), qPrintable(alone));
        }
    }

    /// Extras of somebody else, unknown members and extensions stay.
    void strangersMembers()
    {
        FigureSketch sketch;
        sketch.tree["extras"] = {{"theirs", {1, 2.5, "x"}}};
        sketch.tree["nodes"][1]["extras"] = {{"mine", {{"deep", {1, 2}}}}};
        sketch.tree["nodes"][2]["extras"] = 7;
        sketch.tree["nodes"][2]["extensions"] = {{"X_unknown", {{"a", 1}}}};
        sketch.tree["extensionsUsed"] = {"X_unknown"};
        sketch.tree["x_whatever"] = {{"q", nullptr}};
        sketch.tree["animations"] = {
            {{"name", "clip"},
             {"samplers",
              {{{"input", sketch.add<float>({0.0f, 1.0f}, 5126, "SCALAR")},
                {"output", sketch.add<float>({0, 0, 0, 1, 0, 1, 0, 0}, 5126, "VEC4")}}}},
             {"channels", {{{"sampler", 0}, {"target", {{"node", 2}, {"path", "rotation"}}}}}}}};
        check(sketch);
        CharacterScene scene(path());
        scene.bones()[1]->adjustOrigin({5, 90, 0});
        QStringList messages;
        QString error;
        const QString saved = m_folder.filePath(QStringLiteral("strangers.gltf"));
        QVERIFY2(RySceneFile::save(&scene.scene, saved, &error, &messages), qPrintable(error));
        QCOMPARE(messages.filter(QStringLiteral("clip")), QStringList());
        const GltfEvaluator file(saved.toStdString());
        QCOMPARE(file.tree()["extras"]["theirs"], sketch.tree["extras"]["theirs"]);
        QCOMPARE(file.tree()["nodes"][1]["extras"]["mine"], sketch.tree["nodes"][1]["extras"]["mine"]);
        QCOMPARE(file.tree()["nodes"][2]["extensions"], sketch.tree["nodes"][2]["extensions"]);
        QCOMPARE(file.tree()["x_whatever"], sketch.tree["x_whatever"]);
        QCOMPARE(lostOfClips(GltfEvaluator(path().toStdString()), file), QString());
    }

    /// A joint that another program moved since loses what was stored for it, and a message says so.
    void storedValuesThatNoLongerFit()
    {
        FigureSketch sketch;
        sketch.write(path());
        CharacterScene scene(path());
        scene.bones()[1]->adjustEndPoint({30, 130, 0});
        const QString saved = m_folder.filePath(QStringLiteral("fits.gltf"));
        QString error;
        QVERIFY2(RySceneFile::save(&scene.scene, saved, &error), qPrintable(error));
        sketch.tree["nodes"][2]["extras"] = GltfEvaluator(saved.toStdString()).tree()["nodes"][2]["extras"];
        QVERIFY(ryIsNear(CharacterScene(sketch.write(path())).bones()[1]->getEndPoint(), {30, 130, 0}));
        sketch.tree["skins"][0]["inverseBindMatrices"] = sketch.addBinds({placed(0, 0, 0), placed(0, 1.2, 0)});
        CharacterScene moved(sketch.write(path()));
        QVERIFY(ryIsNear(moved.bones()[1]->getOrigin(), {0, 120, 0}));
        QVERIFY(!ryIsNear(moved.bones()[1]->getEndPoint(), {30, 130, 0}));
        QVERIFY(!moved.messages.filter(QStringLiteral("high")).isEmpty());
    }

private:
    QString path() const { return m_folder.filePath(QStringLiteral("sketch.gltf")); }

    /// Writes the sketch and puts it through what every file must bear. `rebound`: its bind matrices cannot be used,
    /// and what is shown is bound anew once it is edited; until then the file bends otherwise where several joints
    /// pull.
    void check(const FigureSketch &sketch, bool rebound = false)
    {
        sketch.write(path());
        CharacterScene original(path());
        const auto tolerance = 1e-5 * original.height;
        QVERIFY(largestDistance(original.shown(), positionsOf(original.file, original.unit())) <= tolerance);
        const QString saved = m_folder.filePath(QStringLiteral("saved.gltf"));
        QString error;
        QVERIFY2(RySceneFile::save(&original.scene, saved, &error), qPrintable(error));
        QCOMPARE(bytesOf(saved), bytesOf(path()));

        for (int round = 0; round < 10; ++round) {
            CharacterScene edited(path());
            if (moveSomeJoints(edited, 0.7, m_random).empty() && rebound)
                continue;
            QVERIFY2(RySceneFile::save(&edited.scene, saved, &error), qPrintable(error));
            const GltfEvaluator file(saved.toStdString());
            QVERIFY(largestDistance(edited.shown(), positionsOf(file, edited.unit())) <= tolerance);
            CharacterScene again(saved);
            QVERIFY(sameDumps(rySceneDump(again.scene), rySceneDump(edited.scene)));
            turnRandomly(again, m_random);
            const GltfPose pose = poseFor(again.file, again);
            const double posed = largestDistance(again.shown(), positionsOf(again.file, again.unit(), pose));
            QVERIFY2(posed <= 2.0 * tolerance, qPrintable(QString::number(posed)));
        }
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(SketchesTest)
#include "tst_sketches.moc"
