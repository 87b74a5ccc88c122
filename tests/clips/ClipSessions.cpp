#include "ClipSessions.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/undo/RyUndoStack.h"

#include <nlohmann/json.hpp>

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using nlohmann::json;

namespace {

/// What a sampler says: kind, form and bytes of its numbers, whatever their places in the file.
std::string contentOf(const GltfEvaluator &file, const json &sampler)
{
    std::string content = sampler.value("interpolation", "LINEAR");
    for (const char *key : {"input", "output"}) {
        json accessor = file.tree()["accessors"][sampler.at(key).get<size_t>()];
        const bool isSparse = accessor.contains("sparse");
        for (const char *place : {"bufferView", "byteOffset", "sparse", "name", "extras"})
            accessor.erase(place);
        content += accessor.dump() + (isSparse ? "sparse" : "") + file.accessorBytes(sampler.at(key).get<int>());
    }
    return content;
}

/// A removed node hangs nowhere until a new one takes its place.
bool isInScene(const GltfEvaluator &file, int node)
{
    while (file.parent(node) >= 0)
        node = file.parent(node);
    const json scenes = file.tree().value("scenes", json::array());
    return std::any_of(scenes.begin(), scenes.end(), [node](const json &scene) {
        const json tops = scene.value("nodes", json::array());
        return std::find(tops.begin(), tops.end(), json(node)) != tops.end();
    });
}

} // namespace

std::set<int> nodesBesideBones(const CharacterScene &character)
{
    std::set<int> nodes;
    for (int node = 0; node < character.file.nodeCount(); ++node) {
        const QString name = QString::fromStdString(character.file.nodeName(node));
        if (isInScene(character.file, node) && !name.endsWith(QStringLiteral("_end")) &&
            !name.endsWith(QStringLiteral("Nub")))
            nodes.insert(node);
    }
    for (const RyBone *bone : character.bones())
        nodes.erase(character.nodeOf(bone));
    return nodes;
}

QString changedChannel(const GltfEvaluator &before, const GltfEvaluator &after, const std::set<int> &without)
{
    if (clipCount(before) != clipCount(after))
        return QStringLiteral("not as many clips");
    for (size_t clip = 0; clip < size_t(clipCount(before)); ++clip) {
        const json &old = before.tree()["animations"][clip];
        const json &now = after.tree()["animations"][clip];
        for (size_t c = 0; c < old["channels"].size(); ++c) {
            const json &channel = old["channels"][c];
            const QString place = QStringLiteral("clip %1, channel %2").arg(clip).arg(c);
            if (c >= now["channels"].size() || now["channels"][c]["target"] != channel["target"])
                return place + QStringLiteral(" has another target");
            const json &target = channel["target"];
            if (target.contains("node") && without.count(target["node"].get<int>()))
                continue;
            if (contentOf(before, old["samplers"][channel["sampler"].get<size_t>()]) !=
                contentOf(after, now["samplers"][now["channels"][c]["sampler"].get<size_t>()]))
                return place + QStringLiteral(" says something else");
        }
    }
    return {};
}

/// Of the same name in another folder: a figure may have its name from its file.
QString ClipSessions::filePath(const QString &folder, const QString &path) const
{
    QDir(m_folder.path()).mkdir(folder);
    return m_folder.filePath(folder + QLatin1Char('/') + path.section(QLatin1Char('/'), -1));
}

QString ClipSessions::check(const QString &path, const ClipEdits::Kind &kind, const ClipChoice &choice)
{
    QString opened = path;
    worst = 0.0;
    for (int session = 0; session < count; ++session) {
        const QString saved = filePath(QString::number(session), path);
        const QString failure = checkOne(opened, saved, kind, choice);
        if (!failure.isEmpty())
            return QStringLiteral("session %1: %2").arg(session + 1).arg(failure);
        sizes[size_t(session)] = QFileInfo(saved).size();
        opened = saved;
    }
    return {};
}

QString ClipSessions::checkAll(const QString &path, const std::vector<const char *> &kinds, const ClipChoice &choice)
{
    for (const char *kind : kinds) {
        const QString failure = check(path, ClipEdits::named(kind), choice);
        if (!failure.isEmpty())
            return QLatin1String(kind) + QStringLiteral(", ") + failure;
    }
    return {};
}

QString ClipSessions::checkOne(const QString &path, const QString &saved, const ClipEdits::Kind &kind,
                               ClipChoice choice)
{
    CharacterScene character(path);
    choice.steadyNodes = nodesBesideBones(character);
    kind.edit(character, m_random, choice);
    const QString dump = rySceneDump(character.scene);
    QString error;
    messages.clear();
    if (!RySceneFile::save(&character.scene, saved, &error, &messages))
        return error;
    ryUndoStack()->clearAll();
    if (rySceneDump(character.scene) != dump)
        return QStringLiteral("saving changed the scene");
    const GltfEvaluator after(saved.toStdString());
    const ClipDifference difference = largestClipDifference(character.file, after, choice);
    worst = std::max(worst, difference.distance);
    if (!(difference.distance <= Tolerance))
        return (QStringList(difference.text()) + messages).join(QLatin1Char('\n'));
    for (const QString &message : messages.filter(QStringLiteral("clip"), Qt::CaseInsensitive)) {
        if (!mayTell && !message.contains(QStringLiteral("removed")) && !message.contains(QStringLiteral("deleted")))
            return message;
    }
    if (kind.keeps == ClipEdits::Keeps::Channels) {
        const QString changed = changedChannel(character.file, after);
        if (!changed.isEmpty())
            return changed;
    }
    RyScene again;
    if (!RySceneFile::open(&again, saved, &error))
        return error;
    if (isShown && !sameDumps(rySceneDump(again), dump))
        return QStringLiteral("another scene came back");
    const QString twice = filePath(QStringLiteral("twice"), path);
    if (!RySceneFile::save(&again, twice, &error))
        return error;
    return bytesOf(twice) == bytesOf(saved) ? QString() : QStringLiteral("a session without edits gave other bytes");
}
