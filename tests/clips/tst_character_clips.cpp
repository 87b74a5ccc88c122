#include "ClipSessions.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QTemporaryDir>

#include <map>

/// The clips of real characters show after every edit what they showed before.
class CharacterClipsTest : public QObject
{
    Q_OBJECT

private slots:
    /// A row can be run again by itself.
    void init() { m_random.seed(ryTestSeed() + unsigned(qHash(QLatin1String(QTest::currentDataTag()), 0u))); }
    void cleanup() { ryUndoStack()->clearAll(); }

    void editsOfTheRest_data() { addRows(ClipEdits::ofTheRest()); }
    void editsOfTheRest() { check(ClipEdits::ofTheRest()); }
    void editsOfTheTree_data() { addRows(ClipEdits::ofTheTree()); }
    void editsOfTheTree() { check(ClipEdits::ofTheTree()); }

    /// From the second session on files do not grow any more where all bones are edited, over several kinds of edits:
    /// of how many keys a clip has need hangs on the numbers of each.
    void growth_data() { addFiles(); }
    void growth()
    {
        QFETCH(QString, name);
        if (m_sizes[name].first == 0)
            QSKIP("the character is not here, or its edits were not run");
        const auto [second, third] = m_sizes[name];
        QVERIFY2(10 * third <= 11 * second, qPrintable(QStringLiteral("%1, %2 bytes").arg(second).arg(third)));
    }

    /// One bone moved: what drives neither it nor what hangs directly below it keeps its numbers.
    void channelsOfOthers_data() { addFiles(); }
    void channelsOfOthers()
    {
        QFETCH(QString, name);
        if (ryModel(name).isEmpty())
            QSKIP("the character is not here");
        CharacterScene character(ryModel(name));
        const std::vector<RyBone *> bones = character.bones();
        RyBone *bone = bones[m_random() % bones.size()];
        ClipEdits::moveOrigins({bone}, 0.05 * character.height, m_random);
        ClipEdits::turnAtRandom({bone}, m_random);
        const QString saved = m_folder.filePath(QStringLiteral("others.") + name.section(QLatin1Char('.'), -1));
        QString error;
        QVERIFY2(RySceneFile::save(&character.scene, saved, &error), qPrintable(error));
        const GltfEvaluator after(saved.toStdString());
        std::set<int> touched{character.nodeOf(bone)};
        for (const auto &child :
             character.file.tree()["nodes"][size_t(*touched.begin())].value("children", nlohmann::json::array()))
            touched.insert(child.get<int>());
        QCOMPARE(changedChannel(character.file, after, touched), QString());
    }

private:
    static constexpr const char *Characters[] = {"CesiumMan.glb", "RiggedSimple.gltf", "Fox.glb", "kaykit_knight.glb",
                                                 "tentacle_84_skins.glb"};

    static void addFiles()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : Characters)
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void addRows(const std::vector<ClipEdits::Kind> &kinds)
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("kind");
        for (const char *name : Characters) {
            for (size_t kind = 0; kind < kinds.size(); ++kind)
                QTest::addRow("%s %s", name, kinds[kind].name) << QString::fromLatin1(name) << int(kind);
        }
    }

    void check(const std::vector<ClipEdits::Kind> &kinds)
    {
        QFETCH(QString, name);
        QFETCH(int, kind);
        if (ryModel(name).isEmpty())
            QSKIP("the character is not here");
        ClipSessions sessions(m_random);
        const GltfEvaluator file(ryModel(name).toStdString());
        const bool isLarge = clipCount(file) > 10 || file.nodeCount() > 200;
        const bool isWhole = kinds[size_t(kind)].name == QLatin1String("origins and orientations");
        sessions.count = isLarge && !isWhole ? 2 : 3;
        ClipChoice choice;
        choice.frames = isLarge ? 6 : 100;
        choice.vertices = isLarge ? 400 : 1500;
        QCOMPARE(sessions.check(ryModel(name), kinds[size_t(kind)], choice), QString());
        if (kinds[size_t(kind)].isOfAll && sessions.count == 3) {
            m_sizes[name].first += sessions.sizes[1];
            m_sizes[name].second += sessions.sizes[2];
        }
    }

    QTemporaryDir m_folder;
    std::mt19937 m_random;
    std::map<QString, std::pair<qint64, qint64>> m_sizes; // by file: sums of second and third sessions
};

RY_TEST(CharacterClipsTest)
#include "tst_character_clips.moc"
