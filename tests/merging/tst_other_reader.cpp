#include "MergedScene.h"
#include "RigEdits.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyBlender.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <map>
#include <set>

using nlohmann::json;

/// What Blender, where it is there, sees in the file of a merged scene: all of each file, and joints where the scene
/// has them.
class OtherReaderTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { ryUndoStack()->clearAll(); }

    void pairs_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::addColumn<int>("edits");
        QTest::newRow("man and knight") << QStringLiteral("CesiumMan.glb") << QStringLiteral("kaykit_knight.glb") << 0;
        QTest::newRow("man and fox") << QStringLiteral("CesiumMan.glb") << QStringLiteral("Fox.glb") << 0;
        QTest::newRow("edited man and fox") << QStringLiteral("CesiumMan.glb") << QStringLiteral("Fox.glb") << 12;
        QTest::newRow("edited fox and man") << QStringLiteral("Fox.glb") << QStringLiteral("CesiumMan.glb") << 12;
    }
    void pairs();

private:
    /// With the number of pictures, which the script does not tell.
    json reportOn(const QString &file);
    static void compareHeads(const json &report, const MergedScene &merged);

    QTemporaryDir m_folder;
    QString m_script;
    std::map<QString, json> m_reports; // on files that came
};

void OtherReaderTest::initTestCase()
{
    m_script = ryModelsPath() + QStringLiteral("/../tools/blender_report.py");
    if (const QString reason = RyBlender::whyNot(); !reason.isEmpty())
        QSKIP(qPrintable(reason));
    if (!QFile::exists(m_script))
        QSKIP("the script that reports what Blender sees is not here");
}

static const char *const CountPictures =
    "import bpy; print('\\nPICTURES', sum(image.source == 'FILE' for image in bpy.data.images), flush=True)";

json OtherReaderTest::reportOn(const QString &file)
{
    const QString out = m_folder.filePath(QStringLiteral("report.json"));
    QFile::remove(out);
    QString said;
    const bool isDone =
        RyBlender::run({QStringLiteral("--python"), m_script, QStringLiteral("--python-expr"),
                        QString::fromLatin1(CountPictures), QStringLiteral("--"), file, QStringLiteral("--out"), out},
                       &said);
    const QRegularExpressionMatch pictures =
        QRegularExpression(QStringLiteral("^PICTURES (\\d+)$"), QRegularExpression::MultilineOption).match(said);
    if (!isDone || !pictures.hasMatch())
        throw std::runtime_error(said.toStdString());
    json report = json::parse(bytesOf(out).toStdString());
    report["pictures"] = pictures.captured(1).toUInt();
    return report;
}

static std::map<std::string, size_t> countsOf(const json &report)
{
    std::map<std::string, size_t> counts;
    std::set<std::string> materials;
    counts["pictures"] = report.at("pictures");
    for (const char *list : {"armatures", "meshes", "actions"})
        counts[list] = report.at(list).size();
    for (const json &armature : report.at("armatures"))
        counts["bones"] += armature.at("bones").size();
    for (const json &mesh : report.at("meshes")) {
        for (const char *key : {"vertices", "triangles"})
            counts[key] += mesh.at(key).get<size_t>();
        for (const json &material : mesh.at("materials"))
            materials.insert(material.is_string() ? material.get<std::string>() : std::string());
        counts["texture coordinates"] += mesh.at("uv_layers").size();
    }
    counts["materials"] = materials.size();
    return counts;
}

/// Each joint of the scene stands where an armature has a head, in metres and with Z up.
void OtherReaderTest::compareHeads(const json &report, const MergedScene &merged)
{
    const double unit = merged.scene.getOrigin()->unitFactor();
    std::vector<RyVec3> heads;
    for (const json &armature : report.at("armatures")) {
        for (const json &bone : armature.at("bones")) {
            const json &head = bone.at("world_head");
            heads.emplace_back(float(head[0].get<double>() * unit), float(head[2].get<double>() * unit),
                               float(-head[1].get<double>() * unit));
        }
    }
    for (const RyBone *bone : merged.bones()) {
        const RySkeleton *figure = bone->getSkeleton();
        const RyVec3 place = figure->worldMap().mapPoint(bone->getOrigin());
        const bool isThere = std::any_of(heads.begin(), heads.end(),
                                         [&place](const RyVec3 &head) { return (head - place).length() < 0.02f; });
        QVERIFY2(isThere, qPrintable(bone->getName()));
    }
}

void OtherReaderTest::pairs()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(int, edits);
    if (ryModel(first).isEmpty() || ryModel(second).isEmpty())
        QSKIP("the character is not here");
    MergedScene merged({ryModel(first), ryModel(second)});
    std::mt19937 random(ryTestSeed());
    for (int i = 0; i < edits; ++i)
        RigEdits::editAtRandom(merged.scene, merged.bones(), random);
    const QString saved = m_folder.filePath(QStringLiteral("saved.glb"));
    merged.save(saved);
    const json report = reportOn(saved);
    std::map<std::string, size_t> sum;
    for (const QString &each : {first, second}) {
        if (!m_reports.count(each))
            m_reports[each] = reportOn(ryModel(each));
        for (const auto &[kind, count] : countsOf(m_reports[each]))
            sum[kind] += count;
    }
    std::map<std::string, size_t> counts = countsOf(report);
    if (edits > 0)
        counts["bones"] = sum["bones"] = merged.bones().size();
    QVERIFY2(counts == sum, (json(counts).dump() + " for " + json(sum).dump()).c_str());
    compareHeads(report, merged);
}

RY_TEST(OtherReaderTest)
#include "tst_other_reader.moc"
