#include "CharacterScene.h"
#include "FigureSketch.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"
#include "support/RyValidator.h"

#include <QTemporaryDir>

/// Copies beside the file that a scene belongs to: whole ones, and those for other programs, without our extras.
class ExportingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_random.seed(ryTestSeed()); }
    void init() { ryUndoStack()->clearAll(); }

    /// A copy is what a save would write, and leaves what is unsaved unsaved.
    void copies()
    {
        CharacterScene character(sketch(QStringLiteral("figure.gltf")));
        QVERIFY(write(character.scene, RySceneFile::Copy, file("clean.glb")));
        QVERIFY(ryUndoStack()->isClean());
        bend(character);
        QVERIFY(write(character.scene, RySceneFile::Copy, file("copy.glb")));
        QVERIFY(!ryUndoStack()->isClean());
        QVERIFY(ryUndoStack()->canUndo());
        QVERIFY(write(character.scene, RySceneFile::Save, file("saved.glb")));
        QVERIFY(ryUndoStack()->isClean());
        QCOMPARE(bytesOf(file("copy.glb")), bytesOf(file("saved.glb")));
        QVERIFY(bytesOf(file("clean.glb")) != bytesOf(file("saved.glb")));
    }

    void closing()
    {
        CharacterScene character(sketch(QStringLiteral("figure.gltf")));
        bend(character);
        RySceneFile::close(&character.scene);
        QVERIFY(character.scene.getNodes().empty());
        QVERIFY(character.scene.getOrigins().empty());
        QCOMPARE(ryUndoStack()->count(), 0);
        QVERIFY(ryUndoStack()->isClean());
    }

    void characters_data()
    {
        QTest::addColumn<QString>("path");
        for (const QString &name : characterNames()) {
            if (const QString path = ryModel(name); !path.isEmpty())
                QTest::newRow(qPrintable(name)) << path;
        }
        QTest::newRow("sketch") << QString();
    }
    void characters()
    {
        QFETCH(QString, path);
        if (path.isEmpty())
            path = sketch(QStringLiteral("figure.gltf"));
        CharacterScene original(path);
        while (moveSomeJoints(original, 0.2, m_random).empty()) {
        }
        const QString saved = file("saved.glb"), again = file("again.glb"), bare = file("bare.glb");
        QVERIFY(write(original.scene, RySceneFile::Copy, saved));
        const QString before = rySceneDump(original.scene);
        QVERIFY(write(original.scene, RySceneFile::Export, bare));
        QVERIFY2(!m_withoutExtras.isEmpty(), "the saved file had something to leave out");
        QVERIFY(!ryUndoStack()->isClean());

        // The scene keeps what the export left out.
        QCOMPARE(rySceneDump(original.scene), before);
        QVERIFY(write(original.scene, RySceneFile::Copy, again));
        QVERIFY(bytesOf(again) == bytesOf(saved));

        QVERIFY(bytesOf(saved).contains("RYHOST"));
        QVERIFY(!bytesOf(bare).contains("RYHOST"));
        const RyValidation validation = ryValidate(bare);
        if (validation.available)
            QVERIFY2(validation.errors <= ryValidate(path).errors, qPrintable(validation.report));

        // Other programs show the same, in poses too.
        const GltfEvaluator whole(saved.toStdString()), plain(bare.toStdString());
        const double height = heightOf(positionsOf(whole, 1.0));
        QVERIFY(largestDistance(positionsOf(whole, 1.0), positionsOf(plain, 1.0)) == 0.0);
        turnRandomly(original, m_random);
        const GltfPose pose = poseFor(whole, original);
        QVERIFY(largestDistance(positionsOf(whole, 1.0, pose), positionsOf(plain, 1.0, pose)) == 0.0);

        CharacterScene reopened(bare);
        QCOMPARE(reopened.bones().size(), original.bones().size());
        const double factor = 1.0 / reopened.unit();
        CharacterScene::Positions shown = reopened.shown();
        for (auto &[part, points] : shown) {
            for (Eigen::Vector3d &point : points)
                point *= factor;
        }
        const double away = largestDistance(shown, positionsOf(whole, 1.0)) / height;
        QVERIFY2(away <= 1e-5, qPrintable(QStringLiteral("opened here it is off by %1 of its height").arg(away)));
    }

    /// What artists made and the format cannot hold is named.
    void saysWhatIsLeftOut()
    {
        CharacterScene character(sketch(QStringLiteral("figure.gltf")));
        RyBone *low = character.bones()[0], *high = character.bones()[1];
        low->setLabel(QStringLiteral("Low One"));
        high->setEndPoint(RyVec3(0, 250, 30), true);
        high->getXRotControl()->setMin(-20);
        high->getXRotControl()->setIsClamped(true);
        low->setOrigin(low->getOrigin() + RyVec3(1, 0, 0), false);
        QVERIFY(write(character.scene, RySceneFile::Export, file("bare.glb")));
        for (const char *said :
             {"end points, rotation orders and orientations of 2 bones",
              "defaults that differ from the values of 1 bone", "limits of 1 bone", "labels of 1 bone"})
            QVERIFY2(m_withoutExtras.contains(QLatin1String(said)), qPrintable(m_withoutExtras.join(u'\n')));
        QVERIFY2(m_withoutExtras.filter(QStringLiteral("joint parameters")).isEmpty(), "it has none");
        // A file that never had any loses nothing.
        CharacterScene plain(sketch(QStringLiteral("figure.gltf")));
        QVERIFY(write(plain.scene, RySceneFile::Export, file("plain.glb")));
        QCOMPARE(m_withoutExtras, QStringList());
    }

    /// Extras of others stay, those that were no object too.
    void extrasOfOthersStay()
    {
        FigureSketch figure;
        figure.tree["nodes"][1]["extras"] = {{"game", "left"}};
        figure.tree["nodes"][2]["extras"] = 17;
        figure.tree["extras"] = {{"game", {1, 2, 3}}};
        CharacterScene character(figure.write(file("game.gltf")));
        bend(character);
        QVERIFY(write(character.scene, RySceneFile::Export, file("bare.glb")));
        const GltfEvaluator bare(file("bare.glb").toStdString());
        QCOMPARE(bare.tree()["nodes"][1]["extras"], nlohmann::json({{"game", "left"}}));
        QCOMPARE(bare.tree()["nodes"][2]["extras"], nlohmann::json(17));
        QCOMPARE(bare.tree()["extras"], nlohmann::json({{"game", {1, 2, 3}}}));
        QVERIFY(!bytesOf(file("bare.glb")).contains("RYHOST"));
    }

    /// What was removed does not come back because nothing says any more that it was.
    void removedFiguresStayAway()
    {
        RyScene scene;
        QString error;
        RySceneFile::Options merge;
        merge.merge = true;
        QVERIFY2(RySceneFile::open(&scene, sketch(QStringLiteral("one.gltf")), &error), qPrintable(error));
        QVERIFY2(RySceneFile::open(&scene, sketch(QStringLiteral("two.gltf")), merge, &error), qPrintable(error));
        QVERIFY(write(scene, RySceneFile::Save, file("both.glb")));
        for (int gone : {0, 1}) {
            CharacterScene both(file("both.glb"));
            const std::vector<RySkeleton *> figures = both.scene.getSkeletons();
            QCOMPARE(figures.size(), size_t(2));
            both.scene.removeNode(figures[size_t(gone)]);
            QVERIFY(write(both.scene, RySceneFile::Export, file("bare.glb")));
            CharacterScene reopened(file("bare.glb"));
            QCOMPARE(reopened.scene.getSkeletons().size(), size_t(1));
            QCOMPARE(reopened.bones().size(), size_t(2));
            const RyValidation validation = ryValidate(file("bare.glb"));
            if (validation.available)
                QVERIFY2(validation.errors == 0, qPrintable(validation.report));
        }
    }

private:
    QString file(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    QString sketch(const QString &name) const { return FigureSketch().write(m_folder.filePath(name)); }
    static void bend(const CharacterScene &character)
    {
        RyUndoStackHold hold;
        character.bones().back()->setOrigin(character.bones().back()->getOrigin() + RyVec3(0, 3, 1), true);
        hold.accept(QStringLiteral("Move"));
    }
    bool write(RyScene &scene, RySceneFile::Purpose purpose, const QString &path)
    {
        QString error;
        m_withoutExtras.clear();
        RySceneFile::SaveOptions options;
        options.purpose = purpose;
        options.withoutExtras = &m_withoutExtras;
        if (RySceneFile::save(&scene, path, options, &error))
            return true;
        qWarning("%s", qPrintable(error));
        return false;
    }

    QTemporaryDir m_folder;
    QStringList m_withoutExtras;
    std::mt19937 m_random;
};

RY_TEST(ExportingTest)
#include "tst_exporting.moc"
