#include "CharacterScene.h"
#include "FigureSketch.h"
#include "RigEdits.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <Eigen/LU>

/// New bones of a character whose root holds a scale.
class NewBoneScaleTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }

    void scaleOfNewBones_data()
    {
        QTest::addColumn<QVector<double>>("scale");
        QTest::addColumn<bool>("isEven");
        QTest::newRow("none") << QVector<double>{1, 1, 1} << true;
        QTest::newRow("small") << QVector<double>{0.012, 0.012, 0.012} << true;
        QTest::newRow("large") << QVector<double>{40, 40, 40} << true;
        QTest::newRow("mirrored") << QVector<double>{-0.012, 0.012, 0.012} << false;
        QTest::newRow("uneven") << QVector<double>{0.012, 0.03, 0.02} << false;
    }
    void scaleOfNewBones()
    {
        QFETCH(QVector<double>, scale);
        QFETCH(bool, isEven);
        FigureSketch sketch;
        sketch.tree["nodes"][0]["scale"] = {scale[0], scale[1], scale[2]};
        sketch.tree["nodes"][0]["rotation"] = {0.0, std::sin(0.3), 0.0, std::cos(0.3)};
        if (scale[1] == scale[2]) // below an uneven scale a pose would be a shear
            sketch.tree["nodes"][2]["rotation"] = {std::sin(0.1), 0.0, 0.0, std::cos(0.1)};
        CharacterScene scene(sketch.write(path("before")));
        const CharacterScene::Positions rest = scene.atRest();
        RyBone *low = scene.bones()[0];
        RyBone *high = scene.bones()[1];
        low->adjustOrientation(RyQuat(RyVec3(1, 2, 3), 0.4f));
        // In the middle, at the end, beside, and above all others with a child of its own.
        RyBone *middle = RigEdits::splitBone(scene.scene, low);
        RyBone *tip = RigEdits::addChild(scene.scene, high);
        RyBone *tipOfTip = RigEdits::addChild(scene.scene, tip);
        RyBone *top = RigEdits::addSibling(scene.scene, low);
        RigEdits::reparent(low, top, true);
        RyBone *beside = RigEdits::addChild(scene.scene, top);
        const std::vector<RyBone *> made{middle, tip, tipOfTip, top, beside};
        for (RyBone *bone : made)
            bone->setOrientation(RyQuat(RyVec3(3, 1, 2), 0.6f) * bone->getOrientation(), true);

        QString error;
        const QString dump = rySceneDump(scene.scene);
        QVERIFY2(RySceneFile::save(&scene.scene, path("after"), &error), qPrintable(error));
        CharacterScene again(path("after"));
        QVERIFY(sameDumps(rySceneDump(again.scene), dump));
        QVERIFY(largestDistance(positionsOf(again.file, scene.unit()), scene.shown()) <= 1e-5 * scene.height);
        QVERIFY(largestDistance(again.atRest(), rest) <= 1e-5 * scene.height);
        for (const RyBone *bone : made) {
            const int node = again.file.node(bone->getName().toStdString());
            const Eigen::Matrix3d local = again.file.localMatrix(node).topLeftCorner<3, 3>();
            const double volume = std::abs(local.determinant());
            QVERIFY2(std::abs(volume - 1.0) < 1e-4,
                     qPrintable(bone->getName() + QStringLiteral(" %1").arg(std::cbrt(volume))));
            QVERIFY(!isEven || !again.file.tree()["nodes"][size_t(node)].contains("scale"));
        }
        for (const int node : {1, 2})
            QVERIFY(!isEven || !again.file.tree()["nodes"][size_t(node)].contains("scale"));
        QVERIFY2(RySceneFile::save(&again.scene, path("twice"), &error), qPrintable(error));
        QVERIFY(bytesOf(path("twice")) == bytesOf(path("after")));
    }

private:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name) + QStringLiteral(".gltf")); }

    QTemporaryDir m_folder;
};

RY_TEST(NewBoneScaleTest)
#include "tst_new_bone_scale.moc"
