#include "ClipEdits.h"
#include "ClipSketch.h"
#include "FileMutator.h"
#include "RigEdits.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"
#include "support/RyUsedMemory.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <limits>

using nlohmann::json;

/// Files whose clips were changed at random: what opens is edited, saved and opened again. RY_MUTATED_CLIPS says how
/// many.
class MutatedClipsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void files_data();
    void files();
    void cleanupTestCase();

private:
    size_t below(size_t limit) { return m_random() % limit; }
    ClipSketch makeSketch();
    void spoilNumbers(ClipSketch &sketch);
    void spoilMembers(ClipSketch &sketch);
    QString writeMutated(bool damaged);

    static constexpr unsigned FilesByDefault = 150;

    QTemporaryDir m_folder;
    std::mt19937 m_random;
    int m_refused = 0, m_saved = 0;
};

void MutatedClipsTest::files_data()
{
    QTest::addColumn<unsigned>("number");
    bool given = false;
    const unsigned wanted = qEnvironmentVariable("RY_MUTATED_CLIPS").toUInt(&given);
    for (unsigned number = 0; number < (given ? wanted : FilesByDefault); ++number)
        QTest::addRow("file %u", number) << number;
}

void MutatedClipsTest::files()
{
    QFETCH(unsigned, number);
    m_random.seed(ryTestSeed() + number);
    QElapsedTimer clock;
    clock.start();
    const bool damaged = below(6) == 0;
    const QString path = writeMutated(damaged);
    RyScene scene;
    QString error;
    if (!RySceneFile::open(&scene, path, &error)) {
        QVERIFY2(error.contains(path) && error.size() > path.size() + 10, qPrintable(error));
        ++m_refused;
        return;
    }
    std::vector<RyBone *> bones;
    for (const RySkeleton *skeleton : scene.getSkeletons())
        skeleton->getAllBones(bones);
    ClipEdits::moveOrigins(bones, 8.0, m_random);
    if (below(2) == 0)
        ClipEdits::turnAtRandom(bones, m_random);
    if (!damaged && below(3) == 0)
        RigEdits::editAtRandom(scene, bones, m_random);
    const QString saved = m_folder.filePath(below(2) == 0 ? QStringLiteral("saved.glb") : QStringLiteral("saved.gltf"));
    QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, saved, &error), qPrintable(error));
    ++m_saved;
    QVERIFY(clock.elapsed() < 20000);
}

void MutatedClipsTest::cleanupTestCase()
{
    qInfo("%d refused, %d saved", m_refused, m_saved);
    struct rusage usage = {};
    QCOMPARE(getrusage(RUSAGE_SELF, &usage), 0);
    if (ryMemoryIsCounted)
        QVERIFY2(usage.ru_maxrss < 1024 * 1024, qPrintable(QString::number(usage.ru_maxrss)));
    if (m_refused + m_saved >= int(FilesByDefault))
        QVERIFY(m_saved > (m_refused + m_saved) / 3);
}

ClipSketch MutatedClipsTest::makeSketch()
{
    static const char *const kinds[] = {"STEP", "LINEAR", "CUBICSPLINE"};
    ClipSketch sketch(m_random);
    sketch.bind();
    const size_t clip = sketch.addClip("first");
    sketch.driveAll(clip, kinds[below(3)]);
    sketch.drive(clip, ClipSketch::LeftArm, "scale", kinds[below(3)], below(2) == 0);
    const size_t second = sketch.addClip("second");
    sketch.drive(second, ClipSketch::Spine, "rotation", kinds[below(3)]);
    const int shared = sketch.tree["animations"][clip]["samplers"][0]["input"];
    const int values = sketch.addValues("scale", sketch.someValues(ClipSketch::LeftHand, "scale", "STEP", 2));
    sketch.addChannel(second, sketch.addSampler(second, shared, values, "STEP"), ClipSketch::LeftHand, "scale");
    return sketch;
}

/// Times and values that are no numbers, far away, or in another order.
void MutatedClipsTest::spoilNumbers(ClipSketch &sketch)
{
    constexpr float Endless = std::numeric_limits<float>::infinity();
    const float strange[] = {std::nanf(""), Endless, -Endless, 3e38f, -3e38f, 1e-42f, -1.0f, 0.0f, 1e7f, 1e20f};
    const json &clip = sketch.tree["animations"][below(2)];
    const json &sampler = clip["samplers"][below(clip["samplers"].size())];
    const int accessor = sampler[below(2) == 0 ? "input" : "output"];
    const json &source = sketch.tree["accessors"][size_t(accessor)];
    const size_t numbers = source["count"].get<size_t>() * (source["type"] == "SCALAR" ? 1 : 3);
    for (size_t i = 0, count = 1 + below(3); i < count; ++i)
        sketch.set(accessor, below(numbers), strange[below(std::size(strange))]);
}

/// Counts, kinds and places that do not fit; one value where it stands, another kind in its place.
void MutatedClipsTest::spoilMembers(ClipSketch &sketch)
{
    json &clip = sketch.tree["animations"][below(2)];
    json &sampler = clip["samplers"][below(clip["samplers"].size())];
    json &channel = clip["channels"][below(clip["channels"].size())];
    const json &place = sampler[below(2) == 0 ? "input" : "output"];
    if (!place.is_number_integer() || place < 0 || place >= sketch.tree["accessors"].size())
        return; // spoilt before
    json &accessor = sketch.tree["accessors"][place.get<size_t>()];
    const json counts[] = {0, 1, -1, 3, 1000000, 2147483647, 4294967295u, 1e18, 9007199254740993.0, 2.5, "3", nullptr};
    const json indices[] = {-1, 0, 1, 99, 4294967295u, nullptr};
    switch (below(8)) {
    case 0:
    case 1:
        accessor["count"] = counts[below(std::size(counts))];
        if (below(2) == 0)
            accessor.erase("bufferView"); // zeros, as many as it says
        break;
    case 2:
        accessor["type"] = json::array({"SCALAR", "VEC2", "VEC3", "VEC4", "MAT4", "VEC9", nullptr})[below(7)];
        break;
    case 3:
        accessor["componentType"] = json::array({5120, 5121, 5122, 5123, 5125, 5126, 7, "x"})[below(8)];
        accessor["normalized"] = below(2) == 0;
        break;
    case 4:
        accessor["sparse"] = {{"count", counts[below(std::size(counts))]},
                              {"indices", {{"bufferView", below(12)}, {"componentType", 5121 + 2 * int(below(3))}}},
                              {"values", {{"bufferView", below(12)}}}};
        break;
    case 5:
        sampler["interpolation"] = json::array({"STEP", "LINEAR", "CUBICSPLINE", "", "cubic", 1, nullptr})[below(7)];
        break;
    case 6:
        sampler[below(2) == 0 ? "input" : "output"] = indices[below(std::size(indices))];
        break;
    default:
        channel["sampler"] = indices[below(std::size(indices))];
        channel["target"] = {{"node", below(14)}, {"path", json::array({"rotation", "scale", "weights"})[below(3)]}};
    }
}

QString MutatedClipsTest::writeMutated(bool damaged)
{
    ClipSketch sketch = makeSketch();
    if (below(3) == 0)
        spoilNumbers(sketch);
    for (size_t i = below(3); i > 0; --i)
        spoilMembers(sketch);
    const QString path = m_folder.filePath(QStringLiteral("mutated.gltf"));
    FileMutator mutator(bytesOf(sketch.write(path)), m_random);
    for (size_t i = below(3); i > 0; --i)
        mutator.mutateBelow(json::json_pointer("/animations"));
    mutator.write(path, damaged);
    return path;
}

RY_TEST(MutatedClipsTest)
#include "tst_mutated_clips.moc"
