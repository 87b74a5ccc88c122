#include "ClipSessions.h"
#include "ClipSketch.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <Eigen/Geometry>

#include <QTemporaryDir>

using nlohmann::json;

/// Scales of one factor and of three, in nodes, clips and bind matrices; matrices in place of transforms.
class ScaledClipsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_random.seed(ryTestSeed() + unsigned(qHash(QLatin1String(QTest::currentDataTag()), 0u))); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void oneFactor_data()
    {
        QTest::addColumn<double>("armature");
        QTest::addColumn<double>("arm");
        QTest::newRow("large") << 40.0 << 1.0;
        QTest::newRow("small") << 0.01 << 1.0;
        QTest::newRow("arm") << 1.0 << 1.7;
        QTest::newRow("both") << 0.02 << 0.6;
        QTest::newRow("turned inside out") << 1.0 << -1.0;
    }
    void oneFactor()
    {
        QFETCH(double, armature);
        QFETCH(double, arm);
        ClipSketch sketch(m_random);
        sketch.node(ClipSketch::Armature)["scale"] = {armature, armature, armature};
        sketch.node(ClipSketch::LeftArm)["scale"] = {arm, arm, arm};
        sketch.bind();
        sketch.driveAll(sketch.addClip("not scaled"), "LINEAR");
        const size_t scaled = sketch.addClip("scaled");
        sketch.driveAll(scaled, "LINEAR");
        for (const int node : {ClipSketch::Armature, ClipSketch::Hips, ClipSketch::LeftArm, ClipSketch::LeftHand})
            sketch.drive(scaled, node, "scale", "LINEAR");
        check(sketch, {"nothing", "origins", "align all", "orientations", "origins and orientations", "split",
                       "sibling", "delete", "hang higher", "tree and rest"});
    }

    /// Factors that differ in their last digits are one.
    void nearlyOneFactor()
    {
        ClipSketch sketch(m_random);
        sketch.node(ClipSketch::Spine)["scale"] = {1.3f, 1.3f * (1 + 1e-7f), 1.3f * (1 - 1e-7f)};
        sketch.bind();
        const size_t clip = sketch.addClip("noise");
        sketch.driveAll(clip, "LINEAR");
        for (const int node : {ClipSketch::Spine, ClipSketch::LeftArm}) {
            std::vector<float> values;
            for (int key = 0; key < 4; ++key) {
                const auto factor = float(sketch.number(0.7, 1.4));
                for (int i = -1; i <= 1; ++i)
                    values.push_back(factor * (1.0f + 1e-7f * float(i)));
            }
            const int times = sketch.addTimes(sketch.someTimes(4));
            const int output = sketch.addValues("scale", values);
            sketch.addChannel(clip, sketch.addSampler(clip, times, output, "LINEAR"), node, "scale");
        }
        CharacterScene character(write(sketch));
        ClipEdits::turnAtRandom(character.bones(), m_random);
        QStringList messages;
        save(character, &messages);
        QVERIFY2(messages.isEmpty(), qPrintable(messages.join(QLatin1Char('\n'))));
        check(sketch, {"orientations", "origins and orientations"});
    }

    /// Centres and end points move under them; where bones are turned, the file keeps its rotations.
    void threeFactors_data()
    {
        QTest::addColumn<QString>("scale");
        QTest::newRow("of a joint") << QStringLiteral("[1.4, 0.8, 1]");
        QTest::newRow("mirrored") << QStringLiteral("[-1, 1, 1]");
        QTest::newRow("in the clip") << QString();
    }
    void threeFactors()
    {
        QFETCH(QString, scale);
        ClipSketch sketch(m_random);
        if (!scale.isEmpty())
            sketch.node(ClipSketch::LeftArm)["scale"] = json::parse(scale.toStdString());
        sketch.bind();
        sketch.driveAll(sketch.addClip("turned"), "LINEAR");
        const size_t clip = sketch.addClip("scaled");
        sketch.driveAll(clip, "LINEAR");
        if (scale.isEmpty()) {
            sketch.drive(clip, ClipSketch::Spine, "scale", "LINEAR", true);
            sketch.drive(clip, ClipSketch::RightArm, "scale", "CUBICSPLINE", true);
            sketch.drive(clip, ClipSketch::RightHand, "scale", "STEP", true);
        }
        check(sketch, {"nothing", "what no clip knows", "origins", "branches"});
        check(sketch, {"align all", "orientations", "origins and orientations"}, true);
    }

    /// The bone stands as the user turned it, the node in the file as it did, and one message names the bone.
    void turnedUnderThreeFactors()
    {
        ClipSketch sketch(m_random);
        sketch.bind();
        const size_t clip = sketch.addClip("squash");
        sketch.driveAll(clip, "LINEAR");
        sketch.drive(clip, ClipSketch::LeftArm, "scale", "LINEAR", true);
        CharacterScene character(write(sketch));
        RyBone *arm = boneOf(character, ClipSketch::LeftArm);
        const RyQuat turned = RyQuat(RyVec3(0.3f, 1.0f, -0.4f), 1.2f) * arm->getOrientation();
        arm->adjustOrientation(turned);
        arm->adjustOrigin(arm->getOrigin() + RyVec3(2.0f, -1.0f, 3.0f));
        QStringList messages;
        const QString saved = save(character, &messages);
        const QStringList naming = messages.filter(arm->getName());
        QCOMPARE(naming.size(), 1);
        for (const char *other : {"hips", "spine", "left hand", "right"})
            QVERIFY2(!naming[0].contains(QLatin1String(other)), qPrintable(naming[0]));
        const GltfEvaluator after(saved.toStdString());
        const GltfTransform old = GltfTransform::ofNode(sketch.node(ClipSketch::LeftArm));
        const GltfTransform now = GltfTransform::ofNode(after.tree()["nodes"][ClipSketch::LeftArm]);
        QVERIFY(std::abs(std::abs(old.rotation.dot(now.rotation)) - 1.0) < 1e-6);
        QVERIFY((old.translation - now.translation).norm() > 0.01);
        const ClipDifference difference = largestClipDifference(character.file, after);
        QVERIFY2(difference.distance <= ClipSessions::Tolerance, qPrintable(difference.text()));
        CharacterScene again(saved);
        const RyQuat back = boneOf(again, ClipSketch::LeftArm)->getOrientation();
        QVERIFY(std::abs(std::abs(back.dot(turned.normalized())) - 1.0f) < 1e-6f);
    }

    /// No clip drives the node that is scaled so, though the ones above and below it.
    void stillNodes_data()
    {
        QTest::addColumn<bool>("isMatrix");
        QTest::addColumn<bool>("isUneven");
        QTest::newRow("scaled") << false << true;
        QTest::newRow("matrix") << true << false;
        QTest::newRow("scaled matrix") << true << true;
    }
    void stillNodes()
    {
        QFETCH(bool, isMatrix);
        QFETCH(bool, isUneven);
        ClipSketch sketch(m_random);
        json &spine = sketch.node(ClipSketch::Spine);
        if (isUneven)
            spine["scale"] = {1.3, 0.9, 1.1};
        if (isMatrix) {
            const Eigen::Matrix4d matrix = GltfTransform::ofNode(spine).matrix();
            for (const char *key : {"translation", "rotation", "scale"})
                spine.erase(key);
            spine["matrix"] = std::vector<double>(matrix.data(), matrix.data() + 16);
        }
        sketch.bind();
        const size_t clip = sketch.addClip("around");
        for (const int node : {ClipSketch::Armature, ClipSketch::Hips, ClipSketch::LeftArm, ClipSketch::RightHand}) {
            sketch.drive(clip, node, "rotation", "LINEAR");
            sketch.drive(clip, node, "translation", "LINEAR");
        }
        check(sketch, {"nothing", "origins", "some of both", "branches"}, true);
        check(sketch, {"align all", "orientations", "origins and orientations"}, true);
        if (!isMatrix)
            return;
        CharacterScene character(write(sketch));
        ClipEdits::moveOrigins({boneOf(character, ClipSketch::Spine)}, 5.0, m_random);
        QVERIFY(GltfEvaluator(save(character).toStdString()).tree()["nodes"][ClipSketch::Spine].contains("matrix"));
    }

    /// The bind matrices hold scale that the nodes do not have.
    void stretchedBinds_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<double>("z");
        QTest::newRow("one factor") << 1.25 << 1.25 << 1.25;
        QTest::newRow("three factors") << 1.2 << 0.8 << 1.0;
        QTest::newRow("mirrored") << -1.0 << 1.0 << 1.0;
    }
    void stretchedBinds()
    {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(double, z);
        ClipSketch sketch(m_random);
        sketch.bind({x, y, z});
        sketch.driveAll(sketch.addClip("all"), "LINEAR");
        sketch.driveAll(sketch.addClip("splines"), "CUBICSPLINE");
        const bool isUneven = x != y || y != z;
        const bool isSheared = std::abs(x) != std::abs(y);
        check(sketch, {"nothing", "origins", "branches"}, false, !isSheared);
        check(sketch, {"align all", "orientations", "origins and orientations"}, isUneven, !isSheared);
    }

private:
    QString write(const ClipSketch &sketch) const
    {
        return sketch.write(m_folder.filePath(QStringLiteral("sketch.gltf")));
    }
    QString save(CharacterScene &character, QStringList *messages = nullptr) const
    {
        const QString saved = m_folder.filePath(QStringLiteral("saved.gltf"));
        QString error;
        if (!RySceneFile::save(&character.scene, saved, &error, messages))
            throw std::runtime_error(error.toStdString());
        return saved;
    }
    static RyBone *boneOf(const CharacterScene &character, int node)
    {
        for (RyBone *bone : character.bones()) {
            if (character.nodeOf(bone) == node)
                return bone;
        }
        throw std::runtime_error("no such bone");
    }
    void check(const ClipSketch &sketch, const std::vector<const char *> &kinds, bool mayTell = false,
               bool isShown = true)
    {
        ClipChoice choice;
        choice.frames = 150;
        ClipSessions sessions(m_random);
        sessions.mayTell = mayTell;
        sessions.isShown = isShown;
        QCOMPARE(sessions.checkAll(write(sketch), kinds, choice), QString());
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(ScaledClipsTest)
#include "tst_scales.moc"
