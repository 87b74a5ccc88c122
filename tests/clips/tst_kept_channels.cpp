#include "ClipEdits.h"
#include "ClipSessions.h"
#include "SketchTest.h"

#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"
#include "support/RyTest.h"

using nlohmann::json;

/// What stays as it was in clips when joints are edited: channels of others, times, kinds, sharing, names.
class KeptChannelsTest : public SketchTest
{
    Q_OBJECT

private slots:
    void init() { begin(); }
    void cleanup() { ryUndoStack()->clearAll(); }

    /// Channels of the other arm, and whole clips of it, say what they said.
    void channelsOfOthers()
    {
        m_sketch->bind();
        for (const int arm : {ClipSketch::LeftArm, ClipSketch::RightArm}) {
            const size_t clip = m_sketch->addClip("arm");
            for (const char *path : {"rotation", "translation", "scale"}) {
                m_sketch->drive(clip, arm, path, "LINEAR");
                m_sketch->drive(clip, arm + 1, path, "CUBICSPLINE");
            }
        }
        open();
        editBoth(ClipSketch::LeftArm);
        const GltfEvaluator after(save());
        QCOMPARE(changedChannel(m_character->file, after, {ClipSketch::LeftArm, ClipSketch::LeftHand}), QString());
        QVERIFY(!changedChannel(m_character->file, after).isEmpty());
        QCOMPARE(after.tree()["animations"][1]["samplers"].size(), size_t(6));
    }

    /// A turn is a constant factor: as many keys at the same times, of the same kind.
    void timesOfTurns_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char *kind : {"STEP", "LINEAR", "CUBICSPLINE"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void timesOfTurns()
    {
        QFETCH(QString, kind);
        m_sketch->bind();
        const size_t clip = m_sketch->addClip("all");
        for (const int joint : ClipSketch::joints()) {
            for (const char *path : {"rotation", "translation", "scale"})
                m_sketch->drive(clip, joint, path, kind.toStdString());
        }
        open();
        ClipEdits::turnAtRandom(m_character->bones(), m_random);
        const GltfEvaluator after(save());
        const json &now = after.tree()["animations"][0];
        QCOMPARE(now["channels"].size(), m_sketch->tree["animations"][0]["channels"].size());
        QVERIFY(!changedChannel(m_character->file, after).isEmpty());
        showsTheSame(after, {});
        for (size_t c = 0; c < now["channels"].size(); ++c) {
            const json &old = samplerOf(m_character->file, 0, c);
            const json &sampler = samplerOf(after, 0, c);
            QCOMPARE(sampler["interpolation"], old["interpolation"]);
            QVERIFY(after.accessorBytes(sampler["input"]) == m_character->file.accessorBytes(old["input"]));
        }
        isValid();
    }

    /// A centre that moves under clips that turn nothing there needs no key more.
    void timesOfShifts()
    {
        m_sketch->bind();
        const size_t clip = m_sketch->addClip("shifts");
        for (const int joint : {ClipSketch::Hips, ClipSketch::LeftArm})
            m_sketch->drive(clip, joint, "translation", "CUBICSPLINE");
        open();
        ClipEdits::moveOrigins(m_character->bones(), 9.0, m_random);
        const GltfEvaluator after(save());
        showsTheSame(after, {});
        for (size_t c = 0; c < 2; ++c) {
            const json &old = samplerOf(m_character->file, 0, c);
            const json &sampler = samplerOf(after, 0, c);
            QCOMPARE(sampler["interpolation"], old["interpolation"]);
            QVERIFY(after.accessorBytes(sampler["input"]) == m_character->file.accessorBytes(old["input"]));
        }
    }

    void sharing()
    {
        m_sketch->bind();
        const int times = m_sketch->addTimes(m_sketch->someTimes(5));
        const int turns =
            m_sketch->addValues("rotation", m_sketch->someValues(ClipSketch::LeftArm, "rotation", "LINEAR", 5));
        for (int i = 0; i < 3; ++i) {
            const size_t clip = m_sketch->addClip("again");
            m_sketch->addChannel(clip, m_sketch->addSampler(clip, times, turns, "LINEAR"), ClipSketch::LeftArm,
                                 "rotation");
        }
        open();
        ClipEdits::turnAtRandom({boneOf(ClipSketch::LeftArm)}, m_random);
        const GltfEvaluator after(save());
        const json &first = samplerOf(after, 0, 0);
        QVERIFY(after.accessorBytes(first["output"]) != m_character->file.accessorBytes(turns));
        for (size_t clip = 1; clip < 3; ++clip) {
            QCOMPARE(samplerOf(after, clip, 0)["output"], first["output"]);
            QCOMPARE(samplerOf(after, clip, 0)["input"], first["input"]);
        }
    }

    /// Numbers of a joint that stays are copied for the one beside it; what is new stands once for all clips.
    void sharingWithOthers()
    {
        m_sketch->bind();
        const int times = m_sketch->addTimes(m_sketch->someTimes(5));
        const int turns =
            m_sketch->addValues("rotation", m_sketch->someValues(ClipSketch::LeftArm, "rotation", "LINEAR", 5));
        for (int i = 0; i < 2; ++i) {
            const size_t clip = m_sketch->addClip("again");
            const size_t sampler = m_sketch->addSampler(clip, times, turns, "LINEAR");
            m_sketch->addChannel(clip, sampler, ClipSketch::LeftArm, "rotation");
            m_sketch->addChannel(clip, sampler, ClipSketch::RightArm, "rotation");
        }
        open();
        editBoth(ClipSketch::LeftArm);
        const GltfEvaluator after(save());
        showsTheSame(after, {});
        QCOMPARE(changedChannel(m_character->file, after, {ClipSketch::LeftArm}), QString());
        QCOMPARE(samplerOf(after, 0, 0)["input"], json(times));
        QVERIFY(samplerOf(after, 0, 0)["output"] != json(turns));
        // The turn, and the new way of the joint's centre.
        QCOMPARE(after.tree()["animations"][0]["channels"].size(), size_t(3));
        for (const size_t channel : {0, 2}) {
            QCOMPARE(samplerOf(after, 1, channel)["input"], samplerOf(after, 0, channel)["input"]);
            QCOMPARE(samplerOf(after, 1, channel)["output"], samplerOf(after, 0, channel)["output"]);
        }
    }

    /// Two joints that read the same numbers, each turned in its own way, no longer share them.
    void sharingOfJointsThatPart()
    {
        m_sketch->bind();
        const int times = m_sketch->addTimes(m_sketch->someTimes(5));
        const int turns =
            m_sketch->addValues("rotation", m_sketch->someValues(ClipSketch::LeftArm, "rotation", "LINEAR", 5));
        const size_t clip = m_sketch->addClip("both");
        for (const int arm : {ClipSketch::LeftArm, ClipSketch::RightArm})
            m_sketch->addChannel(clip, m_sketch->addSampler(clip, times, turns, "LINEAR"), arm, "rotation");
        open();
        ClipEdits::turnAtRandom({boneOf(ClipSketch::LeftArm), boneOf(ClipSketch::RightArm)}, m_random);
        const GltfEvaluator after(save());
        showsTheSame(after, {});
        QVERIFY(samplerOf(after, 0, 0)["output"] != samplerOf(after, 0, 1)["output"]);
        QCOMPARE(samplerOf(after, 0, 0)["input"], samplerOf(after, 0, 1)["input"]);
    }

    /// The new way of a joint's centre stands where the old one stood, although it has more keys; what another joint,
    /// an extension or another clip reads of the old one stays.
    void placesOfLongerWays_data()
    {
        QTest::addColumn<QString>("reader");
        for (const char *reader : {"none", "other joint", "other clip", "accessor", "view"})
            QTest::newRow(reader) << QString::fromLatin1(reader);
    }
    void placesOfLongerWays()
    {
        QFETCH(QString, reader);
        m_sketch->bind();
        const size_t clip = m_sketch->addClip("arm");
        m_sketch->drive(clip, ClipSketch::LeftArm, "rotation", "LINEAR");
        const int times = m_sketch->addTimes({0.0f, 2.0f});
        const int way =
            m_sketch->addValues("translation", m_sketch->someValues(ClipSketch::LeftArm, "translation", "LINEAR", 2));
        m_sketch->addChannel(clip, m_sketch->addSampler(clip, times, way, "LINEAR"), ClipSketch::LeftArm,
                             "translation");
        const size_t other = reader == "other clip" ? m_sketch->addClip("other") : clip;
        if (reader.startsWith("other")) {
            m_sketch->addChannel(other, m_sketch->addSampler(other, times, way, "LINEAR"), ClipSketch::RightArm,
                                 "translation");
        }
        json &views = m_sketch->tree["bufferViews"];
        const json view = views.size(); // another number than the accessor's
        views.push_back(json(views[m_sketch->tree["accessors"][size_t(way)]["bufferView"].get<size_t>()]));
        m_sketch->tree["accessors"][size_t(way)]["bufferView"] = view;
        if (reader == "accessor" || reader == "view") {
            m_sketch->tree["extensionsUsed"] = {"X_unknown"};
            m_sketch->tree["extensions"]["X_unknown"] = {{"place", reader == "view" ? view : json(way)}};
        }
        open();
        ClipEdits::moveOrigins({boneOf(ClipSketch::LeftArm)}, 30.0, m_random);
        const GltfEvaluator after(save());
        showsTheSame(after, {});
        QCOMPARE(changedChannel(m_character->file, after, {ClipSketch::LeftArm, ClipSketch::LeftHand}), QString());
        const json &sampler = samplerOf(after, 0, 1);
        const json &accessors = after.tree()["accessors"];
        QVERIFY(accessors[sampler["output"].get<size_t>()]["count"] > 2);
        QCOMPARE(sampler["output"] == json(way), reader == "none");
        if (reader == "view")
            QCOMPARE(after.tree()["bufferViews"][view.get<size_t>()]["byteLength"], json(24));
        else if (reader != "none")
            QVERIFY(after.accessorBytes(way) == m_character->file.accessorBytes(way));
        const size_t newOnes = reader == "none" ? 1 : 2; // key times, and the way
        QCOMPARE(accessors.size(), m_sketch->tree["accessors"].size() + newOnes);
        const QByteArray first = bytesOf(m_saved);
        save();
        QVERIFY(bytesOf(m_saved) == first);
    }

    /// New joints that turn as the one beside them read one sampler.
    void sharingOfNewJoints()
    {
        m_sketch->bind();
        m_sketch->drive(m_sketch->addClip("arm"), ClipSketch::LeftArm, "rotation", "LINEAR");
        open();
        for (int i = 0; i < 2; ++i)
            ClipEdits::addEvenSibling(*m_character, boneOf(ClipSketch::LeftArm));
        const GltfEvaluator after(save());
        showsTheSame(after, {});
        std::vector<json> samplers;
        std::set<json> used;
        for (const json &channel : after.tree()["animations"][0]["channels"]) {
            used.insert(channel["sampler"]);
            if (channel["target"]["node"] > int(ClipSketch::Prop) && channel["target"]["path"] == "rotation")
                samplers.push_back(channel["sampler"]);
        }
        QCOMPARE(samplers.size(), size_t(2));
        QCOMPARE(samplers[1], samplers[0]);
        QCOMPARE(after.tree()["animations"][0]["samplers"].size(), used.size());
    }

    void membersOfStrangers()
    {
        m_sketch->bind();
        m_sketch->driveAll(m_sketch->addClip("w\u00e4lk"), "LINEAR");
        json &clip = m_sketch->tree["animations"][0];
        clip["extras"] = {{"loop", true}};
        for (size_t i = 0; i < clip["channels"].size(); ++i) {
            clip["channels"][i]["extras"] = {{"number", i}};
            clip["channels"][i]["target"]["extensions"] = {{"X_unknown", {{"a", i}}}};
            clip["samplers"][i]["extras"] = {{"sampler", i}};
        }
        m_sketch->tree["extensionsUsed"] = {"X_unknown"};
        m_sketch->tree["animations"].push_back(
            {{"name", "empty"}, {"samplers", json::array()}, {"channels", json::array()}});
        const json old = m_sketch->tree["animations"];
        open();
        ClipEdits::moveOrigins(m_character->bones(), 5.0, m_random);
        ClipEdits::turnAtRandom(m_character->bones(), m_random);
        const GltfEvaluator after(save());
        showsTheSame(after, {});
        const json &now = after.tree()["animations"];
        QCOMPARE(now.size(), size_t(2));
        QCOMPARE(now[1], old[1]);
        QCOMPARE(now[0]["name"], old[0]["name"]);
        QCOMPARE(now[0]["extras"], old[0]["extras"]);
        for (size_t i = 0; i < old[0]["channels"].size(); ++i) {
            QCOMPARE(now[0]["channels"][i]["target"], old[0]["channels"][i]["target"]);
            QCOMPARE(now[0]["channels"][i]["extras"], old[0]["channels"][i]["extras"]);
            QCOMPARE(samplerOf(after, 0, i)["extras"], old[0]["samplers"][i]["extras"]);
        }
    }

    /// The channels of a deleted bone go; a clip with no others goes as a whole and is named, unless what hung on the
    /// bone has to do its motion.
    void deletedBone_data()
    {
        QTest::addColumn<int>("bone");
        QTest::newRow("arm") << int(ClipSketch::LeftArm);
        QTest::newRow("hand") << int(ClipSketch::LeftHand);
    }
    void deletedBone()
    {
        QFETCH(int, bone);
        m_sketch->node(ClipSketch::LeftHand).erase("children");
        m_sketch->tree["scenes"][0]["nodes"].push_back(int(ClipSketch::Camera));
        m_sketch->bind();
        m_sketch->driveAll(m_sketch->addClip("all"), "LINEAR");
        m_sketch->drive(m_sketch->addClip("alone"), bone, "rotation", "LINEAR");
        m_sketch->driveAll(m_sketch->addClip("splines"), "CUBICSPLINE");
        open();
        ClipChoice choice;
        choice.steadyNodes = nodesBesideBones(*m_character);
        ClipEdits::deleteInPlace(*m_character, boneOf(bone), choice);
        const GltfEvaluator after(save());
        const bool isLeaf = bone == ClipSketch::LeftHand;
        QCOMPARE(clipCount(after), isLeaf ? 2 : 3);
        QStringList naming = m_messages.filter(QStringLiteral("gone")).filter(QStringLiteral("alone"));
        QCOMPARE(naming.size(), int(isLeaf));
        for (const json &clip : after.tree()["animations"]) {
            for (const json &channel : clip["channels"])
                QVERIFY(channel["target"]["node"] != bone);
        }
        choice.frames = 300;
        const ClipDifference difference = largestClipDifference(m_character->file, after, choice);
        QVERIFY2(difference.distance <= ClipSessions::Tolerance, qPrintable(difference.text()));
        isValid();
    }

    /// Nothing but what was loaded and what is there counts: edits that were undone leave no trace, and saving twice
    /// gives the same bytes.
    void onlyTheDifference()
    {
        m_sketch->bind();
        m_sketch->driveAll(m_sketch->addClip("all"), "LINEAR");
        open();
        RyUndoStackHold hold;
        editBoth(ClipSketch::LeftArm);
        editBoth(ClipSketch::Spine);
        hold.accept(QStringLiteral("Edit"));
        save();
        const QByteArray edited = bytesOf(m_saved);
        save();
        QVERIFY(bytesOf(m_saved) == edited);
        ryUndoStack()->undo();
        save();
        QVERIFY(bytesOf(m_saved) == bytesOf(path()));
        ryUndoStack()->redo();
        save();
        QVERIFY(bytesOf(m_saved) == edited);
    }
};

RY_TEST(KeptChannelsTest)
#include "tst_kept_channels.moc"
