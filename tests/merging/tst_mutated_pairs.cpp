#include "FileMutator.h"
#include "MergedScene.h"
#include "RichSketch.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <QTemporaryDir>

/// Pairs of files that were changed at random, merged and saved: refused with a reason, or saved so that the result
/// opens, never a crash. RY_MUTATED_PAIRS says how many.
class MutatedPairsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { ryUndoStack()->clearAll(); }
    void pairs_data();
    void pairs();
    void cleanupTestCase();

private:
    size_t below(size_t limit) { return m_random() % limit; }
    static int countBones(const RyScene &scene);
    static bool isOfOurWords(const QString &message);
    QString writeMutated(const QString &name, bool changed);
    void editPair(RyScene &scene, const std::vector<RySkeleton *> &first);
    void pose(RyNode &node);

    static constexpr int PairsByDefault = 60;

    QTemporaryDir m_folder;
    std::vector<QByteArray> m_files; // as they were
    std::mt19937 m_random;
    int m_refused = 0, m_saved = 0, m_notSaved = 0;
};

void MutatedPairsTest::initTestCase()
{
    const auto path = [this](const char *name) { return m_folder.filePath(QLatin1String(name)); };
    const QStringList plain{richSketch("", 1.0).write(path("one.gltf")),
                            richSketch(" two", 30.0).write(path("two.gltf"))};
    MergedScene merged(plain);
    pose(*merged.bones()[1]);
    pose(*merged.figure(1));
    merged.save(path("beside.glb"));
    merged.bones()[1]->addNodeChild(merged.figure(1));
    merged.save(path("hung.glb"));
    merged.scene.removeNode(merged.scene.findNode(QStringLiteral("stool")));
    merged.scene.removeNode(merged.figure(1));
    merged.save(path("removed.gltf"));
    const QStringList all = plain + QStringList{path("beside.glb"), path("hung.glb"), path("removed.gltf"),
                                                QStringLiteral(RY_SOURCE_DIR "/resources/samples/mannequin.glb")};
    for (const QString &each : all) {
        m_files.push_back(bytesOf(each));
        QVERIFY2(!m_files.back().isEmpty(), qPrintable(each));
    }
}

void MutatedPairsTest::pairs_data()
{
    QTest::addColumn<unsigned>("number");
    bool given = false;
    const unsigned wanted = qEnvironmentVariable("RY_MUTATED_PAIRS").toUInt(&given);
    for (unsigned number = 0; number < (given ? wanted : PairsByDefault); ++number)
        QTest::addRow("pair %u", number) << number;
}

void MutatedPairsTest::pairs()
{
    QFETCH(unsigned, number);
    m_random.seed(ryTestSeed() + number);
    const size_t changed = below(3); // the first, the second, or both
    const QString paths[2] = {writeMutated(QStringLiteral("first"), changed != 1),
                              writeMutated(QStringLiteral("second"), changed != 0)};
    RyScene scene;
    QString error;
    std::vector<RySkeleton *> first;
    for (const bool merge : {false, true}) {
        RySceneFile::Options options;
        options.merge = merge;
        if (!RySceneFile::open(&scene, paths[merge], options, &error)) {
            QVERIFY2(error.contains(paths[merge]), qPrintable(error));
            QVERIFY2(isOfOurWords(error), qPrintable(error));
            ++m_refused;
            return;
        }
        if (!merge)
            first = scene.getSkeletons();
    }
    editPair(scene, first);
    const QString saved = m_folder.filePath(below(2) == 0 ? QStringLiteral("saved.glb") : QStringLiteral("saved.gltf"));
    error.clear();
    if (!RySceneFile::save(&scene, saved, &error)) {
        QVERIFY(error.size() > saved.size() + 10);
        QVERIFY2(isOfOurWords(error), qPrintable(error));
        qInfo("not saved: %s", qPrintable(error.mid(saved.size())));
        ++m_notSaved;
        return;
    }
    ++m_saved;
    RyScene again;
    QVERIFY2(RySceneFile::open(&again, saved, &error), qPrintable(error));
    QCOMPARE(countBones(again), countBones(scene));
}

void MutatedPairsTest::cleanupTestCase()
{
    qInfo("%d refused, %d saved, %d not saved", m_refused, m_saved, m_notSaved);
    if (m_refused + m_saved + m_notSaved < PairsByDefault)
        return; // one pair alone
    QVERIFY(m_refused > PairsByDefault / 12);
    QVERIFY(m_saved > PairsByDefault / 6);
}

int MutatedPairsTest::countBones(const RyScene &scene)
{
    const std::vector<RyNode *> nodes = scene.getNodesInTreeOrder();
    return int(std::count_if(nodes.begin(), nodes.end(),
                             [](RyNode *node) { return qobject_cast<RyBone *>(node) != nullptr; }));
}

/// Neither those of a library, which no user understands, nor those for what nobody foresaw.
bool MutatedPairsTest::isOfOurWords(const QString &message)
{
    for (const char *word :
         {"exception", "std::", "vector::", "map::", "do not fit together", "does not fit into its file"}) {
        if (message.contains(QLatin1String(word)))
            return false;
    }
    return true;
}

QString MutatedPairsTest::writeMutated(const QString &name, bool changed)
{
    const QByteArray &original = m_files[below(m_files.size())];
    QByteArray bytes = original;
    if (changed) {
        FileMutator mutator(original, m_random);
        const size_t changes = 1 + below(4);
        for (size_t i = 0; i < changes; ++i)
            mutator.mutateTree();
        bytes = mutator.bytes(below(6) == 0);
    }
    const QString path =
        m_folder.filePath(name + (original.startsWith("glTF") ? QStringLiteral(".glb") : QStringLiteral(".gltf")));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write the file of the test");
    return path;
}

/// Sometimes hangs a figure of the second file on a bone of the first and poses it; sometimes takes something away.
void MutatedPairsTest::editPair(RyScene &scene, const std::vector<RySkeleton *> &first)
{
    const std::vector<RySkeleton *> all = scene.getSkeletons();
    if (below(2) == 0 && !first.empty() && all.size() > first.size()) {
        const std::vector<RyBone *> bones = first[below(first.size())]->getAllBones();
        RySkeleton *figure = all[first.size() + below(all.size() - first.size())];
        if (!bones.empty() && !figure->getNodeParent()) {
            RyBone *bone = bones[below(bones.size())];
            pose(*bone);
            bone->addNodeChild(figure);
            pose(*figure);
        }
    }
    if (below(3) == 0) {
        const std::vector<RyNode *> nodes = scene.getNodesInTreeOrder();
        scene.removeNode(nodes[below(nodes.size())]);
    }
}

void MutatedPairsTest::pose(RyNode &node)
{
    node.getXTransControl()->setValue(float(below(200)) - 100.0f);
    node.getYRotControl()->setValue(float(below(300)) - 150.0f);
    node.getScaleControl()->setValue(0.5f + float(below(100)) / 80.0f);
}

RY_TEST(MutatedPairsTest)
#include "tst_mutated_pairs.moc"
