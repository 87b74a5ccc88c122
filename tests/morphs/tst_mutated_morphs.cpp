#include "FileMutator.h"
#include "MorphFileStage.h"

#include <cmath>
#include <limits>

using nlohmann::json;

/// Files whose morphs were changed at random: what opens is edited, saved and opened again. RY_MUTATED_MORPHS says how
/// many.
class MutatedMorphsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { ryUndoStack()->clearAll(); }
    void files_data();
    void files();
    void cleanupTestCase();

private:
    static constexpr unsigned FilesByDefault = 240; // half are saved: chance does not bring that below a third

    size_t below(size_t limit) { return m_random() % std::max(limit, size_t(1)); }
    void spoil(FigureSketch &sketch);
    QString writeMutated(bool damaged);

    std::mt19937 m_random;
    QTemporaryDir m_folder;
    int m_refused = 0;
    int m_saved = 0;
};

void MutatedMorphsTest::files_data()
{
    QTest::addColumn<unsigned>("number");
    bool given = false;
    const unsigned wanted = qEnvironmentVariable("RY_MUTATED_MORPHS").toUInt(&given);
    for (unsigned number = 0; number < (given ? wanted : FilesByDefault); ++number)
        QTest::newRow(qPrintable(QString::number(number))) << number;
}

void MutatedMorphsTest::files()
{
    QFETCH(unsigned, number);
    m_random.seed(ryTestSeed() + number);
    const bool damaged = below(6) == 0;
    const QString path = writeMutated(damaged);
    RyScene scene;
    QString error;
    if (!RySceneFile::open(&scene, path, &error)) {
        QVERIFY2(error.contains(path) && error.size() > path.size() + 10, qPrintable(error));
        ++m_refused;
        return;
    }
    for (const RyNode *node : scene.getNodes()) {
        if (!node->getObject())
            continue;
        for (const RyMorph *morph : MorphFileStage::morphsOf(*node)) {
            QCOMPARE(morph->vertices().size(), morph->deltas().size());
            QVERIFY(std::is_sorted(morph->vertices().begin(), morph->vertices().end(), std::less_equal<int>()));
            for (const RyVec3 &delta : morph->deltas())
                QVERIFY(std::isfinite(delta.x) && std::isfinite(delta.y) && std::isfinite(delta.z));
        }
        for (const RyVec3 &point : node->getObject()->getDeformedPositions())
            QVERIFY(!std::isnan(point.x) && !std::isnan(point.y) && !std::isnan(point.z));
    }
    MorphFileStage::changeValues(scene, m_random);
    if (!damaged && below(4) == 0 && !scene.getSkeletons().empty())
        RySkeleton::convertFigureToProp(scene.getSkeletons().front(), "statue");
    const QString saved = m_folder.filePath(below(2) == 0 ? QStringLiteral("saved.glb") : QStringLiteral("saved.gltf"));
    QVERIFY2(RySceneFile::save(&scene, saved, &error), qPrintable(error));
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, saved, &error), qPrintable(error));
    ++m_saved;
}

void MutatedMorphsTest::cleanupTestCase()
{
    qInfo("%d refused, %d saved", m_refused, m_saved);
    if (m_refused + m_saved >= int(FilesByDefault))
        QVERIFY(m_saved > (m_refused + m_saved) / 3);
}

/// Numbers, counts, kinds and places of targets, weights and names.
void MutatedMorphsTest::spoil(FigureSketch &sketch)
{
    constexpr float Endless = std::numeric_limits<float>::infinity();
    const float strange[] = {std::nanf(""), Endless, -Endless, 3e38f, -3e38f, 1e-42f, 1e20f};
    const json values[] = {nullptr, -1, 1e30, 1e300, "x", json::array(), json::object(), 0.5, 9007199254740993.0};
    json &mesh = sketch.tree["meshes"][below(3)];
    json &primitive = mesh["primitives"][below(mesh["primitives"].size())];
    json &target = primitive["targets"][below(primitive["targets"].size())];
    switch (below(8)) {
    case 0:
        if (target.contains("POSITION") && target["POSITION"].is_number_integer() && target["POSITION"] >= 0 &&
            target["POSITION"] < sketch.tree["accessors"].size()) {
            json &accessor = sketch.tree["accessors"][target["POSITION"].get<size_t>()];
            if (accessor.contains("bufferView") && accessor["componentType"] == 5126)
                sketch.set(target["POSITION"].get<int>(), below(54), strange[below(std::size(strange))]);
        }
        break;
    case 1:
        target["POSITION"] = int(below(sketch.tree["accessors"].size() + 3));
        break;
    case 2:
        sketch.tree["accessors"][below(sketch.tree["accessors"].size())]["count"] = int(below(40));
        break;
    case 3:
        primitive["targets"].erase(below(primitive["targets"].size()));
        break;
    case 4:
        mesh["weights"] = json::array({values[below(std::size(values))], 0.5, values[below(std::size(values))]});
        break;
    case 5:
        sketch.tree["nodes"][3 + below(3)]["weights"] = json(std::vector<double>(below(80), 0.25));
        break;
    case 6:
        mesh["extras"] = {{"targetNames", {values[below(std::size(values))], "a", "a", "scale", ""}}};
        break;
    default:
        target = {{below(2) == 0 ? "NORMAL" : "POSITION", values[below(std::size(values))]}};
    }
}

QString MutatedMorphsTest::writeMutated(bool damaged)
{
    MorphFile file(m_random());
    for (size_t i = below(4); i > 0; --i)
        spoil(file.sketch);
    const QString path = m_folder.filePath(QStringLiteral("mutated.gltf"));
    FileMutator mutator(bytesOf(file.sketch.write(path)), m_random);
    for (size_t i = below(2); i > 0; --i)
        mutator.mutateBelow(json::json_pointer("/meshes"));
    mutator.write(path, damaged);
    return path;
}

RY_TEST(MutatedMorphsTest)
#include "tst_mutated_morphs.moc"
