#include "ClipSessions.h"
#include "SketchTest.h"

#include "rycore/scene/RyBone.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <cmath>
#include <limits>

using nlohmann::json;

/// Channels that cannot be followed stay as they were, and one message names their clips.
class UnreadableChannelsTest : public SketchTest
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { ryUndoStack()->clearAll(); }

    /// A channel that an extension aims stays; where it drives an edited joint, a message names its clip.
    void pointers()
    {
        m_sketch->bind();
        m_sketch->driveAll(m_sketch->addClip("plain"), "LINEAR");
        const size_t clip = m_sketch->addClip("pointed");
        m_sketch->drive(clip, ClipSketch::LeftArm, "rotation", "LINEAR");
        m_sketch->drive(clip, ClipSketch::RightArm, "rotation", "LINEAR");
        json &target = m_sketch->tree["animations"][clip]["channels"][0]["target"];
        target = {{"path", "pointer"},
                  {"extensions",
                   {{"KHR_animation_pointer",
                     {{"pointer", "/nodes/" + std::to_string(ClipSketch::LeftArm) + "/rotation"}}}}}};
        m_sketch->tree["extensionsUsed"] = {"KHR_animation_pointer"};
        const json old = m_sketch->tree["animations"][clip];
        for (const int edited : {ClipSketch::LeftArm, ClipSketch::RightHand}) {
            open();
            editBoth(edited);
            const GltfEvaluator after(save());
            QCOMPARE(after.tree()["animations"][clip]["channels"][0]["target"], old["channels"][0]["target"]);
            const json &sampler = samplerOf(after, clip, 0);
            QVERIFY(after.accessorBytes(sampler["output"]) ==
                    m_character->file.accessorBytes(samplerOf(m_character->file, clip, 0)["output"]));
            const QStringList naming = m_messages.filter(QStringLiteral("pointed"));
            QVERIFY2(naming.size() == int(edited == ClipSketch::LeftArm),
                     qPrintable(m_messages.join(QLatin1Char('\n'))));
            QVERIFY(naming.filter(QStringLiteral("plain")).isEmpty());
            showsTheSame(after, {});
        }
    }

    /// A channel that makes no sense stays as it is, and its clip is named.
    void damagedChannels_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<float>("time");
        QTest::newRow("repeated") << 3 << 0.5f;
        QTest::newRow("falling") << 3 << 0.25f;
        QTest::newRow("no number") << 2 << std::nanf("");
        QTest::newRow("endless") << 4 << std::numeric_limits<float>::infinity();
    }
    void damagedChannels()
    {
        QFETCH(int, key);
        QFETCH(float, time);
        m_sketch->bind();
        m_sketch->driveAll(m_sketch->addClip("whole"), "LINEAR");
        const size_t clip = m_sketch->addClip("broken");
        const int times = m_sketch->addTimes({0.0f, 0.25f, 0.5f, 0.75f, 1.0f});
        m_sketch->set(times, size_t(key), time);
        const int values =
            m_sketch->addValues("rotation", m_sketch->someValues(ClipSketch::LeftArm, "rotation", "LINEAR", 5));
        m_sketch->addChannel(clip, m_sketch->addSampler(clip, times, values, "LINEAR"), ClipSketch::LeftArm,
                             "rotation");
        m_sketch->drive(clip, ClipSketch::RightArm, "rotation", "LINEAR");
        open();
        editBoth(ClipSketch::LeftArm);
        const GltfEvaluator after(save());
        const json &sampler = samplerOf(after, clip, 0);
        QVERIFY(after.accessorBytes(sampler["input"]) == m_character->file.accessorBytes(times));
        QVERIFY(after.accessorBytes(sampler["output"]) == m_character->file.accessorBytes(values));
        QCOMPARE(sampler["interpolation"], json("LINEAR"));
        const QStringList naming = m_messages.filter(QStringLiteral("broken"));
        QVERIFY2(naming.size() == 1 && !naming[0].contains(QStringLiteral("whole")),
                 qPrintable(m_messages.join(QLatin1Char('\n'))));
        showsTheSame(after, {int(clip)});
        CharacterScene again(m_saved);
    }

    /// A joint that hangs elsewhere would have to follow a channel of its old or new parent that makes no sense.
    void damagedParents_data()
    {
        QTest::addColumn<int>("damaged");
        QTest::newRow("old parent") << int(ClipSketch::LeftArm);
        QTest::newRow("new parent") << int(ClipSketch::RightArm);
    }
    void damagedParents()
    {
        QFETCH(int, damaged);
        m_sketch->bind();
        const size_t clip = m_sketch->addClip("broken");
        m_sketch->drive(clip, ClipSketch::LeftHand, "rotation", "LINEAR");
        m_sketch->drive(clip, ClipSketch::LeftHand, "translation", "LINEAR");
        const int times = m_sketch->addTimes({0.0f, 0.5f, 0.5f});
        const int values = m_sketch->addValues("rotation", m_sketch->someValues(damaged, "rotation", "LINEAR", 3));
        m_sketch->addChannel(clip, m_sketch->addSampler(clip, times, values, "LINEAR"), damaged, "rotation");
        open();
        QVERIFY(boneOf(ClipSketch::RightArm)->addNodeChild(boneOf(ClipSketch::LeftHand), true));
        const GltfEvaluator after(save());
        QCOMPARE(m_messages.filter(QStringLiteral("broken")).size(), 1);
        QCOMPARE(changedChannel(m_character->file, after), QString());
        QCOMPARE(after.tree()["animations"][0]["channels"].size(), size_t(3));
    }
};

RY_TEST(UnreadableChannelsTest)
#include "tst_unreadable_channels.moc"
