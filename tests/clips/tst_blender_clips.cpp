#include "ClipEdits.h"

#include "evaluator/GltfFileReader.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/undo/RyUndoStack.h"
#include "support/RyBlender.h"
#include "support/RyTest.h"

#include <nlohmann/json.hpp>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

using nlohmann::json;

/// Another program plays the clips of an edited character: its joints stand where the file says.
class BlenderClipsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ryUndoStack()->clearAll(); }
    void heads_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("Fox.glb") << QStringLiteral("Fox.glb");
    }
    void heads();

private:
    static constexpr size_t FramesOfClip = 10;

    static std::vector<double> commonTimes(const GltfEvaluator &file, const json &clip);
    json playedByBlender(const QString &path, const QStringList &clips);

    QTemporaryDir m_folder;
};

/// Key times of all rotations, some of them: between keys that program bends rotations another way.
std::vector<double> BlenderClipsTest::commonTimes(const GltfEvaluator &file, const json &clip)
{
    std::vector<double> common;
    bool isFirst = true;
    for (const json &channel : clip.at("channels")) {
        if (channel.at("target").at("path") != "rotation")
            continue;
        const json &sampler = clip.at("samplers").at(channel.at("sampler").get<size_t>());
        const std::vector<double> times = file.accessorValues(sampler.at("input").get<int>()).values;
        std::vector<double> both;
        std::set_intersection(common.begin(), common.end(), times.begin(), times.end(), std::back_inserter(both));
        common = isFirst ? times : both;
        isFirst = false;
    }
    std::vector<double> some;
    for (size_t i = 0; i < FramesOfClip && !common.empty(); ++i)
        some.push_back(common[i * common.size() / FramesOfClip]);
    some.erase(std::unique(some.begin(), some.end()), some.end());
    return some;
}

json BlenderClipsTest::playedByBlender(const QString &path, const QStringList &clips)
{
    const QString out = m_folder.filePath(QStringLiteral("heads.json"));
    QString output;
    if (!RyBlender::run(
            QStringList{"--python", QStringLiteral(RY_SOURCE_DIR "/tests/clips/blender_heads.py"), "--", path, out} +
                clips,
            &output))
        throw std::runtime_error(output.toStdString());
    QFile file(out);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("nothing was written");
    return json::parse(file.readAll().toStdString());
}

void BlenderClipsTest::heads()
{
    QFETCH(QString, name);
    if (ryModel(name).isEmpty())
        QSKIP("the character is not here");
    if (const QString reason = RyBlender::whyNot(); !reason.isEmpty())
        QSKIP(qPrintable(reason));
    std::mt19937 random(ryTestSeed());
    CharacterScene character(ryModel(name));
    ClipChoice choice;
    ClipEdits::named("origins and orientations").edit(character, random, choice);
    const QString saved = m_folder.filePath(name);
    QString error;
    QVERIFY2(RySceneFile::save(&character.scene, saved, &error), qPrintable(error));

    const GltfEvaluator file(saved.toStdString());
    QStringList arguments;
    std::map<std::string, std::pair<int, std::vector<double>>> clips;
    for (int clip = 0; clip < std::min(clipCount(file), 3); ++clip) {
        const json &each = file.tree()["animations"][size_t(clip)];
        const std::vector<double> times = commonTimes(file, each);
        QVERIFY(times.size() > 5);
        clips[each.at("name")] = {clip, times};
        arguments += {QStringLiteral("--"), QString::fromStdString(each.at("name"))};
        for (const double time : times)
            arguments.append(QString::number(time, 'g', 17));
    }
    const json played = playedByBlender(saved, arguments);
    const double height = shownHeight(file);
    for (const auto &[clip, frames] : clips) {
        const GltfClipEvaluator evaluator(file, frames.first);
        for (size_t i = 0; i < frames.second.size(); ++i) {
            const std::vector<Eigen::Matrix4d> worlds = file.worldMatrices(evaluator.pose(frames.second[i]));
            const json &heads = played.at(clip).at(i);
            QVERIFY(heads.size() >= file.joints(0).size());
            for (const int joint : file.joints(0)) {
                const auto head = heads.at(file.nodeName(joint)).get<std::vector<double>>();
                const Eigen::Vector3d wanted = worlds[size_t(joint)].topRightCorner<3, 1>();
                const double distance = (Eigen::Vector3d(head[0], head[1], head[2]) - wanted).norm() / height;
                QVERIFY2(distance < 1e-4, qPrintable(QStringLiteral("%1 at %2 s of %3: %4")
                                                         .arg(QString::fromStdString(file.nodeName(joint)))
                                                         .arg(frames.second[i])
                                                         .arg(QString::fromStdString(clip))
                                                         .arg(distance)));
            }
        }
    }
}

RY_TEST(BlenderClipsTest)
#include "tst_blender_clips.moc"
