#include "ClipSessions.h"
#include "ClipSketch.h"

#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <Eigen/Geometry>

#include <QTemporaryDir>

#include <cmath>
#include <cstdint>

using nlohmann::json;

/// Channels of all kinds, shared and packed in every way, on a figure whose joints are edited.
class InterpolationsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_random.seed(ryTestSeed() + unsigned(qHash(QLatin1String(QTest::currentDataTag()), 0u))); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void oneKind_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char *kind : {"STEP", "LINEAR", "CUBICSPLINE"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void oneKind()
    {
        QFETCH(QString, kind);
        ClipSketch sketch = bound();
        driveSome(sketch, kind.toStdString());
        check(sketch, All);
    }

    /// Three kinds on the three properties of one node, above and below others.
    void mixedKinds()
    {
        const std::vector<std::string> kinds{"STEP", "LINEAR", "CUBICSPLINE"};
        ClipSketch sketch = bound();
        for (const auto &[r, t, s] : {std::tuple(0, 1, 2), std::tuple(1, 0, 2), std::tuple(2, 1, 0),
                                      std::tuple(0, 2, 1), std::tuple(1, 2, 0), std::tuple(2, 0, 1)}) {
            const size_t clip = sketch.addClip("mixed");
            for (const int node : {ClipSketch::Hips, ClipSketch::LeftArm}) {
                sketch.drive(clip, node, "rotation", kinds[size_t(r)]);
                sketch.drive(clip, node, "translation", kinds[size_t(t)]);
                sketch.drive(clip, node, "scale", kinds[size_t(s)]);
            }
            sketch.drive(clip, ClipSketch::LeftHand, "rotation", kinds[size_t(t)]);
        }
        check(sketch, OfTheRest);
    }

    /// Of each property of each joint alone; the other ones are the node's own.
    void missingChannels()
    {
        ClipSketch sketch = bound();
        for (const char *path : {"rotation", "translation", "scale"}) {
            for (const int node : {ClipSketch::Armature, ClipSketch::Hips, ClipSketch::LeftArm, ClipSketch::RightHand})
                sketch.drive(sketch.addClip(path + std::to_string(node)), node, path, "LINEAR");
        }
        check(sketch, All);
    }

    /// The pose of the file is not the rest, and clips drive a part of it.
    void posed_data()
    {
        QTest::addColumn<double>("stretch");
        QTest::newRow("turned") << 1.0;
        QTest::newRow("scaled") << 1.2;
    }
    void posed()
    {
        QFETCH(double, stretch);
        ClipSketch sketch(m_random);
        // What the nodes do not have of it is a pose.
        sketch.bind(Eigen::Vector3d::Constant(stretch));
        sketch.pose();
        for (const char *path : {"rotation", "translation", "scale"}) {
            const size_t clip = sketch.addClip(path);
            sketch.drive(clip, ClipSketch::Hips, path, "LINEAR");
            sketch.drive(clip, ClipSketch::LeftHand, path, "CUBICSPLINE");
            sketch.drive(clip, ClipSketch::RightHand, "rotation", "STEP");
        }
        sketch.driveAll(sketch.addClip("all"), "LINEAR");
        check(sketch, OfTheRest);
    }

    /// One key, and clips that begin late or last no time.
    void fewKeys()
    {
        ClipSketch sketch = bound();
        for (const char *kind : {"STEP", "LINEAR", "CUBICSPLINE"}) {
            const size_t clip = sketch.addClip(kind);
            for (const int node : ClipSketch::joints()) {
                const int times = sketch.addTimes({1.5f});
                const int values = sketch.addValues("rotation", sketch.someValues(node, "rotation", kind, 1));
                sketch.addChannel(clip, sketch.addSampler(clip, times, values, kind), node, "rotation");
            }
            sketch.drive(clip, ClipSketch::LeftArm, "scale", "LINEAR");
        }
        check(sketch, OfTheRest);
    }

    /// How many keys are needed hangs on the height of the figure, which joints alone have as well.
    void withoutMesh()
    {
        ClipSketch sketch = bound();
        sketch.node(ClipSketch::Body).erase("skin");
        sketch.driveAll(sketch.addClip("bare"), "LINEAR");
        check(sketch, OfTheRest);
    }

    /// Splines that leave a value and come back to it: between two equal keys only tangents turn and scale.
    void loops()
    {
        ClipSketch sketch = bound();
        for (const std::string path : {"rotation", "scale"}) {
            const size_t clip = sketch.addClip(path);
            std::vector<float> values = sketch.someValues(ClipSketch::LeftArm, path, "CUBICSPLINE", 1);
            const std::vector<float> again = values;
            values.insert(values.end(), again.begin(), again.end());
            const int output = sketch.addValues(path, values);
            const size_t sampler = sketch.addSampler(clip, sketch.addTimes({0.25f, 1.75f}), output, "CUBICSPLINE");
            sketch.addChannel(clip, sampler, ClipSketch::LeftArm, path);
        }
        check(sketch, {"origins", "origins and orientations"});
    }

    /// Samplers of two channels, accessors of two samplers, of two clips, and of node values that are no clip's.
    void sharedNumbers()
    {
        ClipSketch sketch = bound();
        const int times = sketch.addTimes(sketch.someTimes(5));
        const int turns = sketch.addValues("rotation", sketch.someValues(ClipSketch::LeftArm, "rotation", "LINEAR", 5));
        const int shifts =
            sketch.addValues("translation", sketch.someValues(ClipSketch::LeftHand, "translation", "LINEAR", 5));
        for (const char *kind : {"LINEAR", "STEP"}) {
            const size_t clip = sketch.addClip(kind);
            const size_t turning = sketch.addSampler(clip, times, turns, kind);
            const size_t shifting = sketch.addSampler(clip, times, shifts, kind);
            for (const int node : {ClipSketch::Armature, ClipSketch::LeftArm, ClipSketch::RightArm, ClipSketch::Hips})
                sketch.addChannel(clip, turning, node, "rotation");
            for (const int node : {ClipSketch::LeftHand, ClipSketch::RightHand, ClipSketch::RightArm})
                sketch.addChannel(clip, shifting, node, "translation");
            sketch.addChannel(clip, shifting, ClipSketch::Prop, "translation");
            sketch.addChannel(clip, sketch.addSampler(clip, times, turns, "LINEAR"), ClipSketch::Spine, "rotation");
        }
        check(sketch, All);
    }

    void wholeNumbers_data()
    {
        QTest::addColumn<bool>("isShort");
        QTest::newRow("bytes") << false;
        QTest::newRow("shorts") << true;
    }
    void wholeNumbers()
    {
        ClipSketch sketch = bound();
        QFETCH(bool, isShort);
        const size_t clip = sketch.addClip("packed");
        for (const int node : {ClipSketch::Hips, ClipSketch::LeftArm, ClipSketch::LeftHand}) {
            const std::vector<float> values = sketch.someValues(node, "rotation", "LINEAR", 4);
            std::vector<std::int8_t> bytes;
            std::vector<std::int16_t> shorts;
            for (const float value : values) {
                bytes.push_back(std::int8_t(std::lround(127.0f * value)));
                shorts.push_back(std::int16_t(std::lround(32767.0f * value)));
            }
            const int output = isShort ? sketch.add(shorts, 5122, "VEC4") : sketch.add(bytes, 5120, "VEC4");
            sketch.tree["accessors"].back()["normalized"] = true;
            const int times = sketch.addTimes(sketch.someTimes(4));
            sketch.addChannel(clip,
                              sketch.addSampler(clip, times, output, node == ClipSketch::Hips ? "STEP" : "LINEAR"),
                              node, "rotation");
        }
        check(sketch, OfTheRest);
    }

    /// Some values stand beside their list, and a list has no numbers of its own.
    void sparseNumbers()
    {
        ClipSketch sketch = bound();
        const size_t clip = sketch.addClip("sparse");
        const int times = sketch.addTimes({0.0f, 0.5f, 0.75f, 1.5f});
        for (const char *path : {"rotation", "translation"}) {
            const int node = *path == 'r' ? ClipSketch::LeftArm : ClipSketch::Spine;
            const int output = sketch.addValues(path, sketch.someValues(node, path, "LINEAR", 4));
            const int places = sketch.add<std::uint16_t>({1, 3}, 5123, "SCALAR");
            const int values = sketch.addValues(path, sketch.someValues(node, path, "LINEAR", 2));
            json &accessors = sketch.tree["accessors"];
            accessors[size_t(output)]["sparse"] = {
                {"count", 2},
                {"indices", {{"bufferView", accessors[size_t(places)]["bufferView"]}, {"componentType", 5123}}},
                {"values", {{"bufferView", accessors[size_t(values)]["bufferView"]}}}};
            if (*path == 't')
                accessors[size_t(output)].erase("bufferView");
            sketch.addChannel(clip, sketch.addSampler(clip, times, output, "LINEAR"), node, path);
        }
        check(sketch, All);
    }

    /// Two keys nearly half a turn apart, either way; which way the joint goes hangs on the last digits.
    void halfTurns()
    {
        ClipSketch sketch = bound();
        for (const double extra : {-1e-4, -1e-7, 0.0, 1e-7, 1e-4}) {
            const size_t clip = sketch.addClip("half turn");
            for (const int node : {ClipSketch::Hips, ClipSketch::LeftArm, ClipSketch::RightHand}) {
                std::vector<float> values = sketch.someValues(node, "rotation", "LINEAR", 1);
                const Eigen::Quaterniond from(values[3], values[0], values[1], values[2]);
                const Eigen::Quaterniond to =
                    from * Eigen::Quaterniond(Eigen::AngleAxisd(M_PI + extra, Eigen::Vector3d(0.6, 0, 0.8)));
                for (int i = 0; i < 4; ++i)
                    values.push_back(float(to.coeffs()[i]));
                const int times = sketch.addTimes({0.25f, 1.0f});
                const int output = sketch.addValues("rotation", values);
                sketch.addChannel(clip, sketch.addSampler(clip, times, output, "LINEAR"), node, "rotation");
            }
        }
        check(sketch, OfTheRest);
    }

    void twoSkins()
    {
        ClipSketch sketch = bound();
        sketch.addSecondSkin();
        sketch.driveAll(sketch.addClip("all"), "LINEAR");
        sketch.driveAll(sketch.addClip("splines"), "CUBICSPLINE");
        check(sketch, All);
    }

private:
    inline static const std::vector<const char *> OfTheRest{
        "nothing",      "what no clip knows",       "origins",      "align all",
        "orientations", "origins and orientations", "some of both", "branches"};
    inline static const std::vector<const char *> All{"nothing",      "what no clip knows",
                                                      "origins",      "align all",
                                                      "orientations", "origins and orientations",
                                                      "split",        "sibling",
                                                      "duplicate",    "child",
                                                      "delete",       "hang higher",
                                                      "tree and rest"};

    ClipSketch bound()
    {
        ClipSketch sketch(m_random);
        sketch.bind();
        return sketch;
    }
    static void driveSome(ClipSketch &sketch, const std::string &kind)
    {
        sketch.driveAll(sketch.addClip("all"), kind);
        const size_t some = sketch.addClip("some");
        sketch.drive(some, ClipSketch::Spine, "rotation", kind);
        sketch.drive(some, ClipSketch::LeftHand, "translation", kind);
        sketch.drive(some, ClipSketch::RightHand, "scale", kind);
    }
    void check(const ClipSketch &sketch, const std::vector<const char *> &kinds)
    {
        ClipChoice choice;
        choice.frames = 200;
        ClipSessions sessions(m_random);
        QCOMPARE(sessions.checkAll(sketch.write(m_folder.filePath(QStringLiteral("sketch.gltf"))), kinds, choice),
                 QString());
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
};

RY_TEST(InterpolationsTest)
#include "tst_interpolations.moc"
