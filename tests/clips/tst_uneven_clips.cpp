#include "ClipEdits.h"
#include "ClipSessions.h"
#include "SketchTest.h"

#include "rycore/scene/RyBone.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

using nlohmann::json;

/// Joints are turned whose clips scale them unequally, openly or between their keys.
class UnevenClipsTest : public SketchTest
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { ryUndoStack()->clearAll(); }

    /// A turn by which the axes only change places needs no shear: the factors change places with them, key by key.
    void quarterTurns_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char *kind : {"STEP", "LINEAR", "CUBICSPLINE"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void quarterTurns()
    {
        QFETCH(QString, kind);
        m_sketch->bind();
        const size_t clip = m_sketch->addClip("squash");
        m_sketch->drive(clip, ClipSketch::LeftArm, "rotation", kind.toStdString());
        m_sketch->drive(clip, ClipSketch::LeftArm, "scale", kind.toStdString(), true);
        open();
        RyBone *arm = boneOf(ClipSketch::LeftArm);
        // X becomes Y, Y becomes Z: a turn that is not its own inverse.
        arm->adjustOrientation(RyQuat(RyVec3(1, 1, 1).normalized(), float(2.0 * M_PI / 3.0)) * arm->getOrientation());
        const GltfEvaluator after(save());
        QCOMPARE(m_messages, QStringList());
        QCOMPARE(after.tree()["animations"][0]["channels"].size(), size_t(2));
        for (size_t channel = 0; channel < 2; ++channel) {
            const json &old = samplerOf(m_character->file, 0, channel);
            const json &now = samplerOf(after, 0, channel);
            QCOMPARE(now["interpolation"], old["interpolation"]);
            QVERIFY(after.accessorBytes(now["input"]) == m_character->file.accessorBytes(old["input"]));
            QVERIFY(after.accessorBytes(now["output"]) != m_character->file.accessorBytes(old["output"]));
        }
        showsTheSame(after, {});
    }

    /// All keys have three factors of one size: tangents or signs make them differ. The file keeps the old rotation.
    void betweenKeys_data()
    {
        QTest::addColumn<bool>("isSpline");
        QTest::newRow("tangents") << true;
        QTest::newRow("signs") << false;
    }
    void betweenKeys()
    {
        QFETCH(bool, isSpline);
        m_sketch->bind();
        const size_t clip = m_sketch->addClip("squash");
        m_sketch->drive(clip, ClipSketch::LeftArm, "rotation", "LINEAR");
        const std::vector<float> spline{0, 0,  0, 1.2f, 1.2f, 1.2f, 2, -1, 0.5f, // the first key
                                        1, -2, 0, 1.2f, 1.2f, 1.2f, 0, 0,  0};
        const std::vector<float> line{1.2f, 1.2f, 1.2f, 1.2f, -1.2f, -1.2f};
        const int values = m_sketch->addValues("scale", isSpline ? spline : line);
        const size_t sampler =
            m_sketch->addSampler(clip, m_sketch->addTimes({0.25f, 1.5f}), values, isSpline ? "CUBICSPLINE" : "LINEAR");
        m_sketch->addChannel(clip, sampler, ClipSketch::LeftArm, "scale");
        open();
        RyBone *arm = boneOf(ClipSketch::LeftArm);
        ClipEdits::turnAtRandom({arm}, m_random);
        const GltfEvaluator after(save());
        QCOMPARE(m_messages.filter(arm->getName()).size(), 1);
        QCOMPARE(changedChannel(m_character->file, after), QString());
        showsTheSame(after, {});
    }

    /// A bone beside one that is scaled unequally, with other axes, does its motion but for the shear: that is told.
    void sharedMotion()
    {
        m_sketch->bind();
        const size_t clip = m_sketch->addClip("squash");
        m_sketch->drive(clip, ClipSketch::LeftArm, "rotation", "LINEAR");
        m_sketch->drive(clip, ClipSketch::LeftArm, "scale", "LINEAR", true);
        open();
        RyBone *arm = boneOf(ClipSketch::LeftArm);
        ClipEdits::addEvenSibling(*m_character, arm);
        const QString name = m_character->file.tree()["animations"][0]["name"].get<std::string>().c_str();
        save();
        QCOMPARE(m_messages, QStringList());
        for (RyBone *bone : m_character->bones()) {
            if (m_character->nodeOf(bone) < 0)
                bone->adjustOrientation(RyQuat(RyVec3(0.3f, 1.0f, -0.4f), 0.9f) * bone->getOrientation());
        }
        const GltfEvaluator after(save());
        QCOMPARE(m_messages.filter(QStringLiteral("shear")).filter(name).size(), 1);
    }
};

RY_TEST(UnevenClipsTest)
#include "tst_uneven_clips.moc"
