#include "BakedCharacter.h"
#include "ClipComparison.h"

#include "pluginsource/RyJointTools/operations/bakePose.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QFileInfo>
#include <QTemporaryDir>

/// Clips of files that were baked: joints, and what follows one of them alone, go the way they went.
class BakedClipsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_random.seed(ryTestSeed()); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void goTheSameWay_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>(
            "further"); // edits of the rest before, or after and two poses; joints stand elsewhere then
        const auto hasClips = [](const BakedCharacter &character) { return clipCount(character.file) > 0; };
        for (const QString &path : bakeablePaths(hasClips)) {
            for (const int further : {0, 1, 2})
                QTest::addRow("%s %d", qPrintable(QFileInfo(path).fileName()), further) << path << further;
        }
    }
    void goTheSameWay()
    {
        QFETCH(QString, path);
        QFETCH(int, further);
        BakedCharacter character(path);
        const GltfEvaluator &before = character.file;
        if (further == 1)
            moveSomeJoints(character, 0.3, m_random);
        character.pose(m_random);
        for (RyFigure *figure : character.figures())
            QVERIFY(bakePose(figure));
        if (further == 2) { // another pose, and another rest
            character.pose(m_random);
            for (RyFigure *figure : character.figures())
                QVERIFY(bakePose(figure));
            moveSomeJoints(character, 0.3, m_random);
        }
        const QString saved = m_folder.filePath(QStringLiteral("baked.glb"));
        QString error;
        QStringList messages;
        QVERIFY2(RySceneFile::save(&character.scene, saved, &error, &messages), qPrintable(error));
        const GltfEvaluator after(saved.toStdString());
        std::set<int> joints;
        for (const RyBone *bone : further == 0 ? character.bones() : std::vector<RyBone *>())
            joints.insert(character.nodeOf(bone));
        const double worst = largestWayOf(before, after, joints);
        // What lies between several joints cannot, and the save says how far off it is in which clip.
        const double blended = largestClipDifference(before, after, {12, 1500, {}, {}, {}, false}).distance;
        QCOMPARE(messages.filter(QStringLiteral("Vertices between several joints")).size(), blended > 2e-5 ? 1 : 0);
        qInfo("vertices between joints: %.2g %% of the height; others: %.2g", 100.0 * blended, worst);
        QVERIFY2(worst < 1e-5, qPrintable(QStringLiteral("%1\n").arg(worst) + messages.join(QLatin1Char('\n'))));
    }

    /// What plays in the scene is what played there, things on bones included.
    void playTheSameWay_data()
    {
        QTest::addColumn<QString>("path");
        const auto playsClips = [](const BakedCharacter &character) { return !character.scene.getClips().empty(); };
        for (const QString &path : bakeablePaths(playsClips))
            QTest::newRow(qPrintable(QFileInfo(path).fileName())) << path;
    }
    void playTheSameWay()
    {
        QFETCH(QString, path);
        BakedCharacter character(path);
        character.pose(m_random);
        auto *thing = new RyNode;
        thing->setOrigin({3, 4, 5}, true);
        character.scene.addNode(thing);
        character.bones().back()->addNodeChild(thing);
        thing->getXTransControl()->setValue(2);
        thing->getYRotControl()->setValue(50);
        const auto before = played(character);
        for (RyFigure *figure : character.figures())
            QVERIFY(bakePose(figure));
        const auto after = played(character);
        for (size_t frame = 0; frame < before.size(); ++frame)
            QVERIFY(largestWay(before[frame], after[frame]) < 2e-5 * character.height);
    }

private:
    static std::vector<std::vector<Eigen::Vector3d>> played(const BakedCharacter &character)
    {
        std::vector<std::vector<Eigen::Vector3d>> frames;
        for (const auto &clip : character.scene.getClips()) {
            for (const double share : {0.0, 0.3, 0.7}) {
                character.scene.getClipPlayer()->show(clip, share * clip->length());
                frames.push_back(character.joints());
            }
        }
        character.scene.getClipPlayer()->stop();
        return frames;
    }
    /// Of the origins of joints and of vertices that follow one joint alone, at frames of all clips, in heights.
    static double largestWayOf(const GltfEvaluator &before, const GltfEvaluator &after, const std::set<int> &joints)
    {
        std::vector<ClipStage::Point> points;
        for (const int joint : joints)
            points.push_back({joint, -1, 0, 0.0});
        for (const GltfPrimitive &primitive : before.primitives()) {
            const auto shares = before.influences(primitive);
            for (size_t vertex = 0; vertex < shares.size(); vertex += 5) {
                if (shares[vertex].size() == 1)
                    points.push_back({primitive.node, primitive.primitive, vertex});
            }
        }
        const double height = shownHeight(before);
        ClipStage first(before, points), second(after, points);
        double worst = 0.0;
        for (int clip = 0; clip < clipCount(before); ++clip) {
            const GltfClipEvaluator a(before, clip), b(after, clip);
            std::vector<double> times = gltfFrameTimes(a.keyTimes(), 12);
            for (const double time : times)
                worst = std::max(worst, largestWay(first.show(a, time), second.show(b, time)) / height);
        }
        return worst;
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(BakedClipsTest)
#include "tst_bakedClips.moc"
