#include "rycore/io/gltf/play/RyGltfDrivenMorph.h"

#include <unordered_map>

std::vector<RyGltfDrivenMorph> RyGltfDrivenMorph::allOf(const RyGltfOrigin &origin, const RyGltfClips &clips,
                                                        const RyGltfClip &clip)
{
    const RyGltfModel &model = origin.document->model();
    std::unordered_map<int, std::vector<std::shared_ptr<const RyGltfCurve>>> curvesOf; // by node
    for (const RyGltfWeightsChannel &channel : clip.weights) {
        const int mesh = model.nodes[size_t(channel.node)].mesh;
        if (mesh < 0)
            continue;
        const size_t count = model.meshes[size_t(mesh)].targetCount();
        curvesOf.try_emplace(channel.node, clips.weightCurves(channel.sampler, count));
    }
    std::vector<RyGltfDrivenMorph> all;
    for (size_t i = 0; i < origin.figures.size() && !curvesOf.empty(); ++i) {
        for (const RyGltfMorphSource &source : origin.figures[i].morphs) {
            for (const RyGltfMorphSource::Target &target : source.targets) {
                const auto curves = curvesOf.find(target.node);
                if (!source.morph || curves == curvesOf.end() || size_t(target.number) >= curves->second.size())
                    continue;
                all.push_back({source.morph, curves->second[size_t(target.number)]});
                break;
            }
        }
    }
    return all;
}
