#include "rycore/io/gltf/save/RyGltfWeightsPatch.h"

#include "rycore/io/gltf/document/RyGltfReferences.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/save/RyGltfChannelRemoval.h"
#include "rycore/io/gltf/save/RyGltfMorphWriter.h"
#include "rycore/scene/RyShape.h"

#include <algorithm>

using RyExtrasJson::find;
using RyGltfReferences::listIn;

namespace {

/// Of a channel; null for a damaged one.
const RyExtrasJson::Json *samplerOf(const RyExtrasJson::Json &clip, size_t channel)
{
    const RyExtrasJson::Json *place = find(listIn(clip, "channels")[channel], "sampler");
    const RyExtrasJson::Json &samplers = listIn(clip, "samplers");
    const bool isThere = place && RyGltfReferences::isIndex(*place) && place->get<size_t>() < samplers.size();
    return isThere ? &samplers[place->get<size_t>()] : nullptr;
}

int accessorOf(const RyExtrasJson::Json &sampler, const char *key, const RyGltfModel &model)
{
    const RyExtrasJson::Json *accessor = find(sampler, key);
    const bool isThere =
        accessor && RyGltfReferences::isIndex(*accessor) && accessor->get<size_t>() < model.accessors.size();
    return isThere ? accessor->get<int>() : -1;
}

} // namespace

void RyGltfWeightsPatch::apply()
{
    QStringList lost;
    for (size_t clip = 0; clip < listIn(std::as_const(m_patch.document).json(), "animations").size(); ++clip) {
        if (!moveAll(m_patch.document.json()["animations"][clip]))
            lost.append(RyGltfScenePatch::clipName(m_patch.document.model(), clip));
    }
    m_patch.sayOf(QStringLiteral("Morphs of meshes that stand on another node now are not driven any more by: %1"),
                  lost);
    RyGltfChannelRemoval(m_patch).apply([this](const Json &target) { return nodeOf(target) >= 0; });
}

/// Whether every channel could come along. Their channels of before stay, to be taken out.
bool RyGltfWeightsPatch::moveAll(Json &clip)
{
    bool all = true;
    std::map<const RyGltfMovedMesh *, std::vector<Driven>> channels;
    for (size_t place = 0; place < listIn(clip, "channels").size(); ++place) {
        const Json *target = find(listIn(clip, "channels")[place], "target");
        const int node = target ? nodeOf(*target) : -1;
        if (node >= 0)
            channels[movedFrom(node)].push_back({place, node});
    }
    for (const auto &[mesh, driven] : channels)
        all = mesh && move(clip, *mesh, driven) && all;
    return all;
}

/// The node whose weights a target is, where it has lost its mesh; -1 otherwise.
int RyGltfWeightsPatch::nodeOf(const Json &target) const
{
    const Json *path = find(target, "path");
    const Json *node = find(target, "node");
    const std::vector<RyGltfNode> &before = m_patch.source.document->model().nodes;
    if (!path || *path != "weights" || !node || !RyGltfReferences::isIndex(*node) ||
        node->get<size_t>() >= before.size())
        return -1;
    const auto place = node->get<size_t>();
    const bool isLost = m_patch.document.model().nodes[place].mesh < 0 || m_patch.removed.count(int(place)) > 0;
    return before[place].mesh >= 0 && isLost ? int(place) : -1;
}

const RyGltfMovedMesh *RyGltfWeightsPatch::movedFrom(int node) const
{
    for (const RyGltfMovedMesh &mesh : m_moved) {
        // A duplicate has morphs of its own.
        if (mesh.source->hasMorphsOf(node) &&
            mesh.source->newMorphs(*mesh.shape).size() < mesh.shape->getMorphs().size())
            return &mesh;
    }
    return nullptr;
}

/// Adds one channel for all morphs of the mesh. Those that have other key times than the first one cannot come along.
bool RyGltfWeightsPatch::move(Json &clip, const RyGltfMovedMesh &mesh, const std::vector<Driven> &channels)
{
    const Numbers numbers = numbersOf(clip, channels);
    if (numbers.ofNodes.empty())
        return false;
    const int output = m_patch.document.addFloatAccessor(valuesOf(numbers, mesh), 1, 0);
    if (output < 0)
        return false;
    Json sampler = *samplerOf(clip, channels.front().place);
    sampler["output"] = output;
    Json channel = clip["channels"][channels.front().place];
    channel["target"]["node"] = mesh.node;
    channel["sampler"] = clip["samplers"].size();
    clip["samplers"].push_back(std::move(sampler));
    clip["channels"].push_back(std::move(channel));
    return numbers.ofNodes.size() == channels.size();
}

/// None where the first channel is damaged.
RyGltfWeightsPatch::Numbers RyGltfWeightsPatch::numbersOf(const Json &clip, const std::vector<Driven> &channels) const
{
    const RyGltfModel &model = m_patch.document.model();
    const RyGltfModel &before = m_patch.source.document->model();
    Numbers result;
    const Json *first = samplerOf(clip, channels.front().place);
    const int input = first ? accessorOf(*first, "input", model) : -1;
    if (input < 0)
        return result;
    const Json kind = first->value("interpolation", Json("LINEAR"));
    result.isCubic = kind == "CUBICSPLINE";
    result.rows = size_t(model.accessors[size_t(input)].count) * (result.isCubic ? 3 : 1);
    for (const Driven &driven : channels) {
        const Json *sampler = samplerOf(clip, driven.place);
        const int output = sampler ? accessorOf(*sampler, "output", model) : -1;
        if (output < 0 || accessorOf(*sampler, "input", model) != input ||
            sampler->value("interpolation", Json("LINEAR")) != kind)
            continue;
        const int mesh = before.nodes[size_t(driven.node)].mesh;
        std::vector<float> numbers = m_patch.document.readFloats(output);
        if (!numbers.empty() && numbers.size() == result.rows * before.meshes[size_t(mesh)].targetCount())
            result.ofNodes[driven.node] = std::move(numbers);
    }
    if (!result.ofNodes.count(channels.front().node))
        result.ofNodes.clear();
    return result;
}

/// Row by row, a number for each morph of the mesh; those that nothing drives keep their value.
std::vector<float> RyGltfWeightsPatch::valuesOf(const Numbers &numbers, const RyGltfMovedMesh &mesh)
{
    const std::vector<RyMorph *> &morphs = mesh.shape->getMorphs();
    std::vector<float> values(numbers.rows * morphs.size(), 0.0f);
    for (size_t m = 0; m < morphs.size(); ++m) {
        const RyGltfMorphSource::Target *driven = nullptr;
        for (const RyGltfMorphSource &source : mesh.source->morphs) {
            for (const RyGltfMorphSource::Target &target : source.targets) {
                if (source.morph == morphs[m] && !driven && numbers.ofNodes.count(target.node))
                    driven = &target;
            }
        }
        for (size_t row = 0; row < numbers.rows; ++row) {
            float &value = values[row * morphs.size() + m];
            if (driven) {
                const std::vector<float> &ofNode = numbers.ofNodes.at(driven->node);
                value = ofNode[row * (ofNode.size() / numbers.rows) + size_t(driven->number)];
            } else if (!numbers.isCubic || row % 3 == 1) { // tangents are 0
                value = RyGltfMorphWriter::valueOf(*morphs[m]);
            }
        }
    }
    return values;
}
