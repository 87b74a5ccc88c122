#include "MergedScene.h"

#include "rycore/io/RySceneDump.h"
#include "rycore/io/RySceneFile.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "support/RyValidator.h"

#include <nlohmann/json.hpp>

#include <stdexcept>

MergedScene::MergedScene(const QStringList &paths)
{
    for (int i = 0; i < paths.size(); ++i) {
        RySceneFile::Options options;
        options.merge = i > 0;
        QString error;
        if (!RySceneFile::open(&scene, paths[i], options, &error))
            throw std::runtime_error(error.toStdString());
    }
}

std::vector<RyBone *> MergedScene::bones() const
{
    std::vector<RyBone *> list;
    for (RyNode *node : scene.getNodesInTreeOrder()) {
        if (auto *bone = qobject_cast<RyBone *>(node))
            list.push_back(bone);
    }
    return list;
}

void MergedScene::save(const QString &path)
{
    QString error;
    messages.clear();
    losses.clear();
    if (!RySceneFile::save(&scene, path, &error, &messages, &losses))
        throw std::runtime_error(error.toStdString());
}

QString MergedScene::check(const QString &path, double tolerance)
{
    const QString dump = rySceneDump(scene);
    save(path);
    if (rySceneDump(scene) != dump)
        return QStringLiteral("saving changed the scene");
    const GltfEvaluator file(path.toStdString());
    CharacterScene again(path);
    if (!sameDumps(rySceneDump(again.scene), dump))
        return QStringLiteral("another scene came back");
    const double distance = largestDistance(again.shown(), positionsOf(file, again.unit()));
    if (!(distance <= tolerance * again.height))
        return QStringLiteral("shown %1 of the height beside the file: %2")
            .arg(distance / again.height)
            .arg(again.messages.join(QLatin1Char('\n')));
    const QString twice =
        path.section(QLatin1Char('.'), 0, -2) + QStringLiteral("-twice.") + path.section(QLatin1Char('.'), -1);
    QString error;
    if (!RySceneFile::save(&again.scene, twice, &error))
        return error;
    if (bytesOf(twice) != bytesOf(path))
        return QStringLiteral("a second save gave other bytes");
    const RyValidation valid = ryValidate(path);
    return valid.errors == 0 ? QString() : valid.report;
}

std::map<std::string, size_t> contentsOf(const GltfEvaluator &file)
{
    std::map<std::string, size_t> counts;
    for (const char *list : {"materials", "images", "textures", "samplers", "animations", "meshes", "skins"})
        counts[list] = file.tree().value(list, nlohmann::json::array()).size();
    for (const auto &mesh : file.tree().value("meshes", nlohmann::json::array())) {
        for (const auto &primitive : mesh.at("primitives"))
            counts["attributes"] += primitive.at("attributes").size();
    }
    for (const auto &animation : file.tree().value("animations", nlohmann::json::array()))
        counts["channels"] += animation.at("channels").size();
    return counts;
}
