#include "KeptClips.h"

#include <nlohmann/json.hpp>

using nlohmann::json;

namespace {

bool isGone(const GltfEvaluator &file, int node)
{
    while (file.parent(node) >= 0)
        node = file.parent(node);
    return file.tree()["nodes"][size_t(node)].contains("/extras/RYHOST_rigging/removed"_json_pointer);
}

/// Each with its sampler, but for what is numbers.
json channelsOf(const json &clip, const GltfEvaluator &after)
{
    json result = json::array();
    for (json channel : clip["channels"]) {
        if (channel["target"].contains("node") && isGone(after, channel["target"]["node"]))
            continue;
        json sampler = clip["samplers"][channel["sampler"].get<size_t>()];
        for (const char *key : {"input", "output", "interpolation"})
            sampler.erase(key);
        channel["sampler"] = sampler;
        result.push_back(channel);
    }
    return result;
}

} // namespace

QString lostOfClips(const GltfEvaluator &before, const GltfEvaluator &after)
{
    const json old = before.tree().value("animations", json::array());
    const json now = after.tree().value("animations", json::array());
    size_t place = 0;
    for (json clip : old) {
        const json channels = channelsOf(clip, after);
        const QString name = QString::fromStdString(clip.value("name", std::string("a clip")));
        const bool isThere = place < now.size() && now[place].value("name", json()) == clip.value("name", json());
        if (!isThere && channels.empty())
            continue;
        if (!isThere)
            return name + QStringLiteral(" is not in its place");
        json other = now[place++];
        const json others = channelsOf(other, after);
        if (others.size() < channels.size() || !std::equal(channels.begin(), channels.end(), others.begin()))
            return name + QStringLiteral(" has other channels");
        for (json *each : {&clip, &other}) {
            each->erase("channels");
            each->erase("samplers");
        }
        if (clip != other)
            return name + QStringLiteral(" has other members");
    }
    return place == now.size() ? QString() : QStringLiteral("there are more clips");
}

std::set<int> accessorsOfClips(const GltfEvaluator &file)
{
    std::set<int> accessors;
    for (const json &clip : file.tree().value("animations", json::array())) {
        for (const json &sampler : clip.value("samplers", json::array()))
            accessors.insert({sampler["input"].get<int>(), sampler["output"].get<int>()});
    }
    return accessors;
}
